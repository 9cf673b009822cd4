// Questions about a document. Nothing here changes a document.
#include <algorithm>
#include <numeric>

#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/LookJson.h>
#include <tarn/service/ProofJson.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/How.h>
#include <tarn/session/Proof.h>

#include "protocol/Methods.h"
#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

/// The beginning of every answer.
Json at(Document const& document) {
  return {{"revision", document.revision()}};
}

/// A page of a list, in an answer.
template <typename List, typename AsJson>
Json listAnswer(Host const& host, Arguments const& arguments, Document const& document, List const& all,
                AsJson const& asJson) {
  Json json = at(document);
  json.update(pageAsJson(all, arguments.page(host.options.limits.page), asJson));
  return json;
}

/// Whether an item is at or below an object.
bool isBelow(std::string const& path, std::string const& object) {
  return path.starts_with(object) && (object.empty() || path.size() == object.size() || path[object.size()] == '/');
}

session::Item const& itemOf(session::OwnValue const& own) {
  return own.item;
}
session::Item const& itemOf(session::Waiting const& waiting) {
  return waiting.item;
}
session::Item const& itemOf(session::Difference const& difference) {
  return difference.item;
}

/// A page of those entries that are at or below "below", of all when it is not there.
template <typename List, typename AsJson>
Json listBelow(Host const& host, Arguments const& arguments, Document const& document, List list,
               AsJson const& asJson) {
  if (auto const below = arguments.optionalText("below")) {
    std::erase_if(list, [&](auto const& entry) { return !isBelow(itemOf(entry).path, *below); });
  }
  return listAnswer(host, arguments, document, list, asJson);
}

Json withFindingCounts(Document& document, Json object, std::string const& path) {
  auto const counts = document.findingsBelow(path);
  object["errors"] = counts.errors;
  object["warnings"] = counts.warnings;
  return object;
}

/// The document, reviewed if the request wants the findings.
LockedDocument lockWithFindings(Host& host, Arguments const& arguments) {
  return arguments.flag("findings") ? lockReviewed(host, arguments) : lockDocument(host, arguments);
}

Json lookParam(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const record = document->session().lookParam(arguments.text("path"), arguments.text("name"));
  Json json = at(*document);
  json["param"] = record ? paramRecordAsJson(*record) : Json();
  return json;
}

Json lookObject(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const record = document->session().lookObject(arguments.text("path"));
  Json json = at(*document);
  json["object"] = record ? objectRecordAsJson(*record) : Json();
  return json;
}

Json look(Host& host, Arguments const& arguments) {
  auto const& items = arguments.objects("items", host.options.limits.page);
  LockedDocument const document = lockDocument(host, arguments);
  Json records = Json::array();
  for (nlohmann::json const& one : items) {
    session::Item const item = Arguments(one).item();
    Json record;
    if (item.isParam()) {
      if (auto const param = document->session().lookParam(item.path, *item.name)) record = paramRecordAsJson(*param);
    } else if (auto const object = document->session().lookObject(item.path)) {
      record = objectRecordAsJson(*object);
    }
    records.push_back(std::move(record));
  }
  Json json = at(*document);
  json["records"] = std::move(records);
  return json;
}

Json params(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const names = document->session().params(arguments.text("path"));
  return listAnswer(host, arguments, *document, names, [](std::string const& name) { return name; });
}

/// The layout of a form: its parameters without their values.
Json outline(Host& host, Arguments const& arguments) {
  // The entries are short, and a client needs all of them before it can show the first ones in their places.
  constexpr std::size_t pages = 10;
  LockedDocument const document = lockDocument(host, arguments);
  session::Session const& session = document->session();
  std::string const path = arguments.text("path");
  Json answer = at(*document);
  answer.update(
      pageAsJson(session.params(path), arguments.page(pages * host.options.limits.page), [&](std::string const& name) {
        auto const record = session.lookParam(path, name);
        Json json = {{"name", name}};
        if (!record) return json;
        if (!record->label.empty()) json["label"] = record->label;
        if (!record->group.empty()) json["group"] = record->group;
        if (record->advanced) json["advanced"] = true;
        json["available"] = record->available();
        if (record->waiting) json["waiting"] = true;
        return json;
      }));
  return answer;
}

Json childTypes(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockWithFindings(host, arguments);
  auto const types = document->session().childTypes(arguments.text("path"));
  bool const withFindings = arguments.flag("findings");
  return listAnswer(host, arguments, *document, types, [&](session::ChildTypeRecord const& type) {
    Json json = childTypeRecordAsJson(type);
    if (!withFindings) return json;
    Document::FindingCounts sum;
    for (std::string const& child : type.present) {
      auto const counts = document->findingsBelow(child);
      sum.errors += counts.errors;
      sum.warnings += counts.warnings;
    }
    json["errors"] = sum.errors;
    json["warnings"] = sum.warnings;
    return json;
  });
}

Json children(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockWithFindings(host, arguments);
  std::vector<std::string> paths;
  std::string const path = arguments.text("path");
  bool const withOffered = arguments.flag("offered");
  for (session::ChildTypeRecord& type : document->session().childTypes(path)) {
    std::move(type.present.begin(), type.present.end(), std::back_inserter(paths));
    if (withOffered) std::move(type.offered.begin(), type.offered.end(), std::back_inserter(paths));
  }
  // The root of the model has no rules. The object that is edited is below it.
  std::string const& root = document->session().root();
  if (path.empty() && paths.empty() && !root.empty()) paths.push_back(root);
  bool const withFindings = arguments.flag("findings");
  return listAnswer(host, arguments, *document, paths, [&](std::string const& child) {
    auto const record = document->session().lookObject(child);
    Json json = record ? objectRecordAsJson(*record) : Json{{"path", child}};
    return withFindings ? withFindingCounts(*document, std::move(json), child) : json;
  });
}

Json form(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockWithFindings(host, arguments);
  session::Session const& session = document->session();
  std::string const path = arguments.text("path");
  auto const object = session.lookObject(path);
  Json json = at(*document);
  json["object"] = object ? objectRecordAsJson(*object) : Json();
  json["params"] =
      pageAsJson(session.params(path), arguments.page(host.options.limits.page), [&](std::string const& name) {
        auto const record = session.lookParam(path, name);
        return record ? paramRecordAsJson(*record) : Json();
      });
  json["childTypes"] = jsonList(session.childTypes(path),
                                [](session::ChildTypeRecord const& type) { return childTypeRecordAsJson(type); });
  if (arguments.flag("findings")) {
    auto const& all = session.review().list;
    auto own = document->findingsAt(path);
    own.resize(std::min(own.size(), host.options.limits.page));
    json["findings"] = jsonList(own, [&](std::size_t i) { return findingAsJson(all[i]); });
  }
  return json;
}

Json allowedValues(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const record = document->session().lookParam(arguments.text("path"), arguments.text("name"));
  bool const wantsSubset = arguments.flag("subset");
  SharedStrings values;
  if (record) values = wantsSubset ? record->allowed.subsetValues : record->allowed.allowedValues;
  return listAnswer(host, arguments, *document, values.vector(), [](std::string const& value) { return value; });
}

Json resolve(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const found = document->session().resolve(arguments.text("text"));
  Json json = at(*document);
  if (auto const* const item = std::get_if<session::Item>(&found)) {
    json["item"] = itemAsJson(*item);
  } else {
    json["refused"] = refusedAsJson(std::get<session::Refused>(found));
  }
  return json;
}

Json find(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  std::size_t const most = host.options.limits.page;
  // One more, to know whether there are more.
  std::size_t const limit = std::min(arguments.number("limit", 100), most);
  auto found = document->session().find(arguments.text("text"), limit + 1);
  Json json = at(*document);
  json["isComplete"] = found.size() <= limit;
  found.resize(std::min(found.size(), limit));
  json["list"] = jsonList(found, foundAsJson);
  return json;
}

Json convert(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  auto const value = document->session().convert(arguments.text("value"), arguments.text("units"));
  Json json = at(*document);
  json["value"] = value ? Json(*value) : Json();
  return json;
}

Json own(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  return listBelow(host, arguments, *document, document->session().own(), ownValueAsJson);
}

Json waiting(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  return listBelow(host, arguments, *document, document->session().waiting(), waitingAsJson);
}

Json differences(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  bool const isFromFile = arguments.word("from", {"opened", "file"}) == 1;
  session::Session const& session = document->session();
  auto differences = isFromFile ? session.differencesFrom(document->modelInFile()) : session.differences();
  return listBelow(host, arguments, *document, std::move(differences), differenceAsJson);
}

Json result(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  std::string const below = arguments.optionalText("below").value_or(std::string());
  struct Entry {
    std::string const* path;
    std::string const* name;
    std::string const* value;
  };
  std::vector<Entry> entries;
  ModelState const state = document->session().result();
  for (auto const& [path, values] : state) {
    if (!isBelow(path, below)) continue;
    if (values.empty()) entries.push_back({&path, nullptr, nullptr});
    for (auto const& [name, value] : values) entries.push_back({&path, &name, &value});
  }
  return listAnswer(host, arguments, *document, entries, [](Entry const& entry) {
    Json json = {{"path", *entry.path}};
    if (entry.name != nullptr) {
      json["name"] = *entry.name;
      json["value"] = *entry.value;
    }
    return json;
  });
}

Json review(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockReviewed(host, arguments);
  session::Findings const& findings = document->session().review();
  std::vector<session::Finding const*> list;
  auto const below = arguments.optionalText("below");
  for (session::Finding const& finding : arguments.flag("beta") ? findings.beta : findings.list) {
    if (!below || isBelow(finding.path, *below)) list.push_back(&finding);
  }
  Json json = at(*document);
  json["errors"] = findings.count(session::Severity::Error);
  json["warnings"] = findings.count(session::Severity::Warning);
  json["betaMessages"] = findings.beta.size();
  json["objectsPassedOver"] = findings.objectsPassedOver;
  json.update(pageAsJson(list, arguments.page(host.options.limits.page),
                         [](session::Finding const* finding) { return findingAsJson(*finding); }));
  return json;
}

Json why(Host& host, Arguments const& arguments) {
  using session::Question;
  LockedDocument const document = lockDocument(host, arguments);
  session::WhyOptions options;
  options.question =
      std::array{Question::Value, Question::Presence, Question::Allowed,
                 Question::LastEdit}[arguments.word("question", {"value", "presence", "allowed", "last-edit"})];
  if (options.question == Question::Allowed) options.value = arguments.text("value");
  options.depth = std::min(arguments.number("depth", 1), host.options.limits.whyDepth);
  session::Proof const proof = document->session().why(arguments.item(), options);
  Json json = at(*document);
  json["proof"] = proofAsJson(proof);
  json["text"] = textOf(proof);
  return json;
}

Json how(Host& host, Arguments const& arguments) {
  LockedDocument const document = lockDocument(host, arguments);
  session::HowOptions options;
  std::size_t const longest = static_cast<std::size_t>(host.options.limits.howTime.count());
  options.maxTime =
      std::chrono::milliseconds(static_cast<std::int64_t>(std::min(arguments.number("time", longest), longest)));
  session::HowResult const result =
      document->session().how({arguments.item(), arguments.optionalText("value")}, options);
  Json json = at(*document);
  json["result"] = howAsJson(result);
  json["text"] = textOf(result);
  return json;
}

constexpr Method methods[] = {
    {"lookParam", lookParam},
    {"lookObject", lookObject},
    {"look", look},
    {"params", params},
    {"outline", outline},
    {"childTypes", childTypes},
    {"children", children},
    {"form", form},
    {"allowedValues", allowedValues},
    {"resolve", resolve},
    {"find", find},
    {"convert", convert},
    {"own", own},
    {"waiting", waiting},
    {"differences", differences},
    {"result", result},
    {"review", review},
    {"why", why},
    {"how", how},
};

}  // namespace

std::span<Method const> lookMethods() noexcept {
  return methods;
}

}  // namespace tarn::service
