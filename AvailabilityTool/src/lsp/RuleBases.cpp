#include "lsp/RuleBases.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

namespace tarn::tool {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view ruleSuffix = ".rules.yaml";
constexpr std::string_view testSuffix = ".rule-tests.yaml";

/// The files of a folder whose names end with `suffix`, in the order of their names.
std::vector<fs::path> filesIn(fs::path const& folder, std::string_view suffix) {
  std::vector<fs::path> found;
  std::error_code failed;
  for (fs::directory_iterator it(folder, failed), end; !failed && it != end; it.increment(failed)) {
    if (it->path().filename().string().ends_with(suffix)) found.push_back(it->path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

bool hasRules(fs::path const& folder) {
  return !filesIn(folder, ruleSuffix).empty();
}

}  // namespace

bool RuleBases::isOfRules(std::string const& path) {
  return path.ends_with(ruleSuffix) || path.ends_with(testSuffix);
}

bool RuleBases::isConfigured(std::string const& path) const {
  return std::any_of(configured_.begin(), configured_.end(), [&](fs::path const& one) {
    return one == fs::path(path) || (one == fs::path(path).parent_path() && isOfRules(path));
  });
}

std::string RuleBases::keyOf(std::string const& path) const {
  if (isConfigured(path)) return {};
  fs::path const folder = fs::path(path).parent_path();
  if (!path.ends_with(testSuffix)) return folder.empty() ? path : folder.string();
  if (!configured_.empty()) return {};
  if (hasRules(folder)) return folder.string();
  if (fs::path const beside = folder.parent_path() / "rules"; hasRules(beside)) return beside.string();
  if (hasRules(folder.parent_path())) return folder.parent_path().string();
  return folder.string();
}

void RuleBases::loadFile(RuleBase& base, std::string const& path) {
  if (open_.contains(path)) return;  // the editor has its text
  if (base.rules.files().size() >= limits_.files) {
    problems_.push_back(path + ": a rule base has more than " + std::to_string(limits_.files) +
                        " files; the others are not read");
    return;
  }
  std::error_code failed;
  auto const size = fs::file_size(path, failed);
  if (!failed && size > limits_.fileBytes) {
    problems_.push_back(path + ": the file is larger than " + std::to_string(limits_.fileBytes) + " bytes");
    return;
  }
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (failed || !stream) {
    problems_.push_back(path + ": the file cannot be read: " + std::strerror(errno != 0 ? errno : EIO));
    return;
  }
  base.rules.setText(path, std::move(text));
}

void RuleBases::loadFolder(RuleBase& base, fs::path const& folder, std::string_view suffix) {
  for (fs::path const& file : filesIn(folder, suffix)) loadFile(base, file.string());
}

RuleBase& RuleBases::base(std::string const& key) {
  auto& base = bases_[key];
  if (base) return *base;
  base = std::make_unique<RuleBase>();
  std::vector<fs::path> const sources = key.empty() ? configured_ : std::vector<fs::path>{key};
  std::error_code failed;
  for (fs::path const& source : sources) {
    if (fs::is_directory(source, failed)) {
      loadFolder(*base, source, ruleSuffix);
      for (fs::path const& tests : {source, source / "tests", source.parent_path() / "tests"}) {
        if (tests != source && hasRules(tests)) continue;  // the tests are of those rules
        loadFolder(*base, tests, testSuffix);
      }
    } else if (key.empty()) {
      loadFile(*base, source.string());
    }
  }
  return *base;
}

std::string RuleBases::open(std::string const& path, std::string text) {
  if (!isOfRules(path) && !isConfigured(path)) return {};
  if (open_.size() >= limits_.documents && !open_.contains(path)) {
    return path + ": more than " + std::to_string(limits_.documents) + " documents are open; this one is left out";
  }
  if (text.size() > limits_.fileBytes) {
    return path + ": the document is larger than " + std::to_string(limits_.fileBytes) + " bytes; it is left out";
  }
  std::string const key = keyOf(path);
  RuleBase& owner = base(key);
  open_[path] = key;
  owner.rules.setText(path, std::move(text));
  if (workbench::EditedRules::isTestFile(path)) owner.changedTests.insert(path);
  return {};
}

void RuleBases::close(std::string const& path) {
  auto const found = open_.find(path);
  if (found == open_.end()) return;
  RuleBase& owner = *bases_.at(found->second);
  open_.erase(found);
  owner.changedTests.erase(path);
  owner.rules.remove(path);
  std::error_code failed;
  if (fs::is_regular_file(path, failed)) loadFile(owner, path);
}

void RuleBases::refresh(std::string const& path) {
  if (open_.contains(path) || (!isOfRules(path) && !isConfigured(path))) return;
  auto const found = bases_.find(keyOf(path));
  if (found == bases_.end()) return;
  std::error_code failed;
  found->second->rules.remove(path);
  if (fs::is_regular_file(path, failed)) loadFile(*found->second, path);
}

RuleBase* RuleBases::find(std::string const& path) {
  auto const found = open_.find(path);
  return found != open_.end() ? bases_.at(found->second).get() : nullptr;
}

}  // namespace tarn::tool
