// The case in libyang, the C library that validates configuration trees against YANG modules: a general rule engine
// that many devices run. The module is case.yang.
//
// Work that it does not do is not measured. It stops at the first fault, so only sound cases are timed. It does not
// report potential items, so nothing asks for them. It reports a value that is no longer allowed but does not reset it,
// so no such edit is timed.
#include <libyang/libyang.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "Peer.h"

namespace {

using namespace tarn::benchmarks;

using Context = std::unique_ptr<ly_ctx, decltype(&ly_ctx_destroy)>;

/// Owns a tree; libyang changes where it begins.
class Tree {
 public:
  Tree() = default;
  Tree(Tree const&) = delete;
  Tree& operator=(Tree const&) = delete;
  ~Tree() { lyd_free_all(top); }

  lyd_node* top = nullptr;
};

std::string moduleText() {
  std::ifstream file(TARN_SOURCE_DIR "/benchmarks/peers/case.yang");
  std::string text(std::istreambuf_iterator<char>(file), {});
  if (text.empty()) throw std::runtime_error("case.yang cannot be read");
  return text;
}

/// Absent required parameters come with their defaults.
std::string const& editingModule() {
  static std::string const text = moduleText();
  return text;
}

/// Absent required parameters are mistakes.
std::string const& judgingModule() {
  static std::string const text =
      std::regex_replace(moduleText(), std::regex("default \"[^\"]*\";"), "mandatory true;");
  return text;
}

Context contextOf(std::string const& module) {
  ly_ctx* context = nullptr;
  if (ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY, &context) != LY_SUCCESS) throw std::runtime_error("no context");
  Context result(context, &ly_ctx_destroy);
  if (lys_parse_mem(context, module.c_str(), LYS_IN_YANG, nullptr) != LY_SUCCESS) {
    throw std::runtime_error(std::string("case.yang: ") + ly_errmsg(context));
  }
  return result;
}

std::string nodeName(std::string_view name) {
  std::string result(name);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return c == ' ' ? '-' : static_cast<char>(std::tolower(c)); });
  return result;
}

void addParameters(std::string& json, tarn::ObjectState const& values, bool first = false) {
  for (auto const& [name, value] : values) {
    if (!first) json += ',';
    first = false;
    json += '"' + nodeName(name) + "\":";
    bool const truth = value == "true" || value == "false";
    json += truth ? value : '"' + value + '"';
  }
}

/// The case as JSON, in the encoding that YANG prescribes.
std::string jsonOf(tarn::ModelState const& state) {
  std::string json = "{\"flow-case:case\":{";
  auto const& top = state.at("/Case");
  addParameters(json, top, true);
  json += top.empty() ? "\"domain\":[" : ",\"domain\":[";
  bool inDomain = false;
  bool inBoundaries = false;
  std::string behind;  // singletons of the domain, which follow its list of boundaries
  auto const endDomain = [&] {
    if (inBoundaries) json += ']';
    if (inDomain) json += behind + '}';
    behind.clear();
    inBoundaries = false;
  };
  for (auto const& [path, values] : state) {
    std::string_view const last = std::string_view(path).substr(path.rfind('/') + 1);
    std::string_view const type = last.substr(0, last.find(':'));
    std::string const id(last.substr(std::min(last.size(), type.size() + 1)));
    if (type == "Domain") {
      bool const another = inDomain;
      endDomain();
      inDomain = true;
      json += (another ? ",{\"id\":\"" : "{\"id\":\"") + id + '"';
      addParameters(json, values);
    } else if (type == "Boundary") {
      json += inBoundaries ? ",{\"id\":\"" : ",\"boundary\":[{\"id\":\"";
      inBoundaries = true;
      json += id + '"';
      addParameters(json, values);
      json += '}';
    } else if (type != "Case") {
      behind += ",\"" + nodeName(type) + "\":{";
      addParameters(behind, values, true);
      behind += '}';
    }
  }
  endDomain();
  return json + "]}}";
}

bool parse(ly_ctx* context, std::string const& json, Tree& tree) {
  return lyd_parse_data_mem(context, json.c_str(), LYD_JSON, LYD_PARSE_ONLY | LYD_PARSE_STRICT, 0, &tree.top) ==
         LY_SUCCESS;
}

void parseSound(ly_ctx* context, std::string const& json, Tree& tree) {
  if (!parse(context, json, tree)) throw std::runtime_error(std::string("the case: ") + ly_errmsg(context));
}

bool validate(ly_ctx* context, Tree& tree, Tree* changes = nullptr) {
  return lyd_validate_all(&tree.top, context, LYD_VALIDATE_PRESENT, changes ? &changes->top : nullptr) == LY_SUCCESS;
}

void requireValid(ly_ctx* context, Tree& tree, Tree* changes = nullptr) {
  if (!validate(context, tree, changes)) throw std::runtime_error(std::string("refused: ") + ly_errmsg(context));
}

template <class Visit>
void visitParameters(lyd_node* first, Visit visit) {
  for (lyd_node* node = first; node; node = node->next) {
    if (node->schema->nodetype == LYS_LEAF) {
      if (!lysc_is_key(node->schema)) visit(node);
    } else {
      visitParameters(lyd_child(node), visit);
    }
  }
}

std::size_t countParameters(lyd_node* tree) {
  std::size_t count = 0;
  visitParameters(tree, [&](lyd_node*) { ++count; });
  return count;
}

/// How many parameters the difference creates or deletes. The operation of a node is stored with it, or with the
/// nearest node above that has one.
std::size_t countOperation(lyd_node* tree, std::string_view operation) {
  std::size_t count = 0;
  visitParameters(tree, [&](lyd_node* parameter) {
    for (lyd_node const* node = parameter; node; node = lyd_parent(node)) {
      if (lyd_meta const* meta = lyd_find_meta(node->meta, nullptr, "yang:operation")) {
        count += lyd_get_meta_value(meta) == operation;
        break;
      }
    }
  });
  return count;
}

lyd_node* find(Tree const& tree, std::string const& path) {
  lyd_node* node = nullptr;
  if (lyd_find_path(tree.top, path.c_str(), 0, &node) != LY_SUCCESS) throw std::runtime_error("no " + path);
  return node;
}

/// "/Case/Domain:d0/Boundary:b0" and "Kind" as libyang writes them.
std::string nodePath(std::string const& object, std::string const& parameter) {
  std::string path = "/flow-case:case";
  std::size_t at = object.find('/', 1);
  while (at != std::string::npos) {
    std::size_t const end = std::min(object.find('/', at + 1), object.size());
    std::string const component = object.substr(at + 1, end - at - 1);
    std::size_t const colon = component.find(':');
    path += '/' + nodeName(component.substr(0, colon)) + "[id='" + component.substr(colon + 1) + "']";
    at = end == object.size() ? std::string::npos : end;
  }
  return path + '/' + nodeName(parameter);
}

void change(lyd_node* parameter, char const* value) {
  if (lyd_change_term(parameter, value) != LY_SUCCESS)
    throw std::runtime_error(std::string("cannot be set to ") + value);
}

/// The application has to do this itself: the turbulence models that only a transient case can have get the default.
std::size_t resetModels(Tree& tree) {
  std::vector<lyd_node*> models;
  visitParameters(tree.top, [&](lyd_node* node) {
    if (std::string_view(node->schema->name) == "model" && lyd_get_value(node) == std::string_view("LES")) {
      models.push_back(node);
    }
  });
  for (lyd_node* model : models) change(model, "SST");
  return models.size();
}

void checkCounts(CaseWorkload const& workload, ly_ctx* judging, ly_ctx* editing) {
  Tree sound;
  parseSound(judging, jsonOf(workload.valid()), sound);
  requireSame(countParameters(sound.top), workload.parameters(), "parameters");
  requireValid(judging, sound);
  Tree inletless;
  parseSound(judging, jsonOf(workload.withoutInlets()), inletless);
  requireSame(validate(judging, inletless), false, "passes without inlets");
  for (Mistake const& mistake : workload.mistakes()) {
    Tree tree;
    requireSame(parse(judging, jsonOf(workload.with(mistake)), tree) && validate(judging, tree), false,
                "passes with " + mistake.what);
  }

  Tree edited;
  parseSound(editing, jsonOf(workload.valid()), edited);
  requireValid(editing, edited);
  for (CaseEdit const& edit : editsOf(workload, Editing::Plain)) {
    change(find(edited, nodePath(edit.object, edit.parameter)), edit.value.c_str());
    if (edit.expected.modified > 0) {
      requireSame(validate(editing, edited), false, "values that must be reset pass");
      requireSame(resetModels(edited), edit.expected.modified, "modified by " + edit.what);
      requireValid(editing, edited);
    } else {
      Tree changes;
      requireValid(editing, edited, &changes);
      requireSame(countOperation(changes.top, "create"), edit.expected.added, "added by " + edit.what);
      requireSame(countOperation(changes.top, "delete"), edit.expected.removed, "removed by " + edit.what);
    }
    requireSame(countParameters(edited.top), edit.expected.parameters, "parameters after " + edit.what);
  }
  Tree bare;
  parseSound(editing, jsonOf(workload.bare()), bare);
  requireValid(editing, bare);
  requireSame(countParameters(bare.top), countsFromBare(workload).parameters, "parameters of the bare case");
}

void measure(CaseWorkload const& workload) {
  ly_log_options(LY_LOSTORE_LAST);
  Context const judging = contextOf(judgingModule());
  Context const editing = contextOf(editingModule());
  checkCounts(workload, judging.get(), editing.get());

  printTime("load rules", medianOf([] { return timed([] { contextOf(editingModule()); }); }, 200));
  std::string const json = jsonOf(workload.valid());
  printTime("read text", medianOf(
                             [&] {
                               Tree tree;
                               return timed([&] { parseSound(judging.get(), json, tree); });
                             },
                             400));

  Tree sound;
  parseSound(judging.get(), json, sound);
  lyd_node* const notes = find(sound, nodePath("/Case/Domain:d0", "Notes"));
  std::size_t runs = 0;
  printTime("validate", medianOf(
                            [&] {
                              char const* value = runs++ % 2 ? "one" : "other";
                              return timed([&] {
                                change(notes, value);
                                requireValid(judging.get(), sound);
                              });
                            },
                            400));
  printTime("validate unchanged", medianOf([&] { return timed([&] { requireValid(judging.get(), sound); }); }, 400));

  Tree edited;
  parseSound(editing.get(), json, edited);
  requireValid(editing.get(), edited);
  runs = 0;
  printTime("edit local", medianOf(
                              [&] {
                                std::string const inlet = workload.inletOf(workload.domains() / 2 + runs / 2);
                                lyd_node* const kind = find(edited, nodePath(inlet, "Kind"));
                                char const* value = runs++ % 2 ? "Inlet" : "Wall";
                                Tree changes;
                                return timed([&] {
                                  change(kind, value);
                                  requireValid(editing.get(), edited, &changes);
                                });
                              },
                              600));
  lyd_node* const regime = find(edited, nodePath("/Case", "Flow Regime"));
  runs = 0;
  printTime("edit global", medianOf(
                               [&] {
                                 char const* value = runs++ % 2 ? "Turbulent" : "Laminar";
                                 Tree changes;
                                 return timed([&] {
                                   change(regime, value);
                                   requireValid(editing.get(), edited, &changes);
                                 });
                               },
                               600));
}

}  // namespace

int main(int argc, char** argv) {
  return runPeer(argc, argv, measure);
}
