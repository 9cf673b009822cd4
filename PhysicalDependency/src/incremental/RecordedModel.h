#pragma once

#include <functional>
#include <string>
#include <vector>

#include <tarn/ModelTDF.h>

#include "incremental/ReadRecorder.h"

namespace tarn {

class ProvisionalTDFDB;

/// The model that rules read during a walk that is followed. It answers like the view behind it, and records what was
/// asked.
class RecordedModel final : public ModelTDF {
 public:
  /// Both are used as long as this exists.
  RecordedModel(ProvisionalTDFDB const& view, ReadRecorder& recorder) noexcept : view_(view), recorder_(recorder) {}

  [[nodiscard]] bool hasObject(std::string const& path) const override;
  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override;
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override;
  [[nodiscard]] std::string const& getObjectName(std::string const& path) const override;
  [[nodiscard]] std::string const& getObjectType(std::string const& path) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& paramPath) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath,
                                                     std::string const& name) const override;
  bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const override;
  bool getParamValueAsList(std::string const& objPath, std::string const& name,
                           std::vector<std::string>& out) const override;
  bool getParameterNames(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool anyChildOfType(std::string const& path, std::string const& type,
                      std::function<bool(std::string const& child)> const& visit) const override;

 private:
  void recordObject(std::string const& path) const;
  void recordParam(std::string const& objPath, std::string const& name, std::string const& routedBy) const;
  void recordParam(std::string const& paramPath) const;
  void recordListing(std::string const& path, Fact listing) const;

  ProvisionalTDFDB const& view_;
  ReadRecorder& recorder_;
};

}  // namespace tarn
