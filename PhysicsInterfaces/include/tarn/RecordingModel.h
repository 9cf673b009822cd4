#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelRead.h>
#include <tarn/ModelTDF.h>

namespace tarn {

/// Answers like the model behind it, and keeps what was asked together with the answers. Pass it to an evaluation to
/// learn what that reads:
///
///     RecordingModel model(state);
///     EvalContext context(&model);
///     bool const holds = condition.evaluate(TDFContext("/Case/Domain:rotor"), &context);
///     for (ModelRead const& read : model.reads()) show(read);
///
/// It is for one thread. The model behind it must not change meanwhile.
class TARN_EXPORT RecordingModel final : public ModelTDF {
 public:
  /// `model` must outlive this.
  explicit RecordingModel(ModelTDF const& model) noexcept : model_(model) {}
  /// With another limit of reads that are kept.
  RecordingModel(ModelTDF const& model, std::size_t maxReads) noexcept : model_(model), maxReads_(maxReads) {}

  /// The reads so far, each fact once, in the order of their first read. If a parameter was asked for its presence and
  /// later for its value, it is listed with its value. Valid until the next read.
  [[nodiscard]] std::vector<ModelRead> const& reads() const noexcept { return reads_; }
  /// Some reads are missing, because there were more than the limit.
  [[nodiscard]] bool isOverfull() const noexcept { return isOverfull_; }

  /// The indices in `reads` of everything that is read from now on, each once, go to `sink`, until this is called
  /// again; null ends that. Reads without a sink are not kept at all if `recordAll(false)` was called.
  void setSink(std::vector<std::size_t>* sink) noexcept { sink_ = sink; }
  [[nodiscard]] std::vector<std::size_t>* sink() const noexcept { return sink_; }
  void recordAll(bool on) noexcept { recordsAll_ = on; }

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
  static constexpr std::size_t defaultMaxReads = 1000;

  void recordParameter(ModelRead::Kind kind, std::string const& objPath, std::string const& name) const;
  void recordObject(std::string const& path) const;
  void recordList(ModelRead::Kind kind, std::string const& path, std::string const& name,
                  std::vector<std::string> const& items) const;
  /// The index of the fact, or `none` when it is not kept. `add` makes the read when it is not known yet.
  [[nodiscard]] std::size_t find(ModelRead::Kind kind, std::string_view object, std::string_view name) const;
  void add(ModelRead read) const;
  /// Whether one more read is too many. Notes that it is missing then.
  [[nodiscard]] bool isFull() const noexcept;
  void note(std::size_t index) const;
  [[nodiscard]] bool isRecording() const noexcept { return recordsAll_ || sink_ != nullptr; }

  ModelTDF const& model_;
  std::size_t maxReads_ = defaultMaxReads;
  bool recordsAll_ = true;
  std::vector<std::size_t>* sink_ = nullptr;
  // Asking is const for rules, and it grows these.
  mutable std::vector<ModelRead> reads_;
  mutable std::unordered_multimap<std::size_t, std::size_t> byHash_;
  mutable bool isOverfull_ = false;
};

}  // namespace tarn
