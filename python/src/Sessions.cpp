// A session for Python. Its lock lets several threads use it: their calls wait for each other. The interpreter lock is
// released while a call waits or the library works, so other threads of Python go on. The order is always the same: the
// interpreter lock is given up before the lock of the session is taken, so no two threads wait for each other for ever.
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <tarn/TDFContext.h>
#include <tarn/rules/Query.h>
#include <tarn/rules/RuleError.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Sentences.h>
#include <tarn/session/Session.h>
#include <tarn/session/WrittenItem.h>

#include "Converter.h"
#include "Errors.h"
#include "Models.h"
#include "Rules.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

using session::References;
using session::Session;

References references(bool follow) noexcept {
  return follow ? References::Follow : References::Stay;
}

session::Question questionFrom(std::string const& name) {
  using session::Question;
  if (name == "presence") return Question::Presence;
  if (name == "value") return Question::Value;
  if (name == "allowed") return Question::Allowed;
  if (name == "last-edit") return Question::LastEdit;
  throw py::value_error("question is \"" + name + "\"; give \"presence\", \"value\", \"allowed\" or \"last-edit\"");
}

/// The state of a model for an expression, as text rules see it.
struct Evaluated {
  rules::ParsedQuery parsed;
  rules::Query::Result result;
  Explanation explanation;
};

/// Notices Ctrl-C, and other signals that Python answers, during a call that releases the interpreter lock. Only the
/// main thread of Python answers signals; in other threads nothing is ever noticed.
class SignalCheck {
 public:
  /// Runs the handlers of signals that have come. True if one has raised an exception.
  bool isInterrupted() {
    if (error_) return true;
    auto const now = std::chrono::steady_clock::now();
    if (now < next_) return false;
    next_ = now + interval;
    py::gil_scoped_acquire const lock;
    if (PyErr_CheckSignals() != 0) error_.emplace();
    return error_.has_value();
  }

  /// Throws the exception of the handler. Needs the interpreter lock.
  void raise() const {
    if (error_) throw py::error_already_set(*error_);
  }

 private:
  /// Taking the interpreter lock can wait for other threads of Python, so it is not done more often.
  static constexpr std::chrono::milliseconds interval{100};

  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + interval;
  std::optional<py::error_already_set> error_;
};

/// Says which thread is in a call of a session. A handler of a signal can run within such a call.
class Occupied {
 public:
  explicit Occupied(std::atomic<std::thread::id>& thread) : thread_(thread) { thread_ = std::this_thread::get_id(); }
  ~Occupied() { thread_ = std::thread::id(); }
  Occupied(Occupied const&) = delete;
  Occupied& operator=(Occupied const&) = delete;

 private:
  std::atomic<std::thread::id>& thread_;
};

class SessionHandle {
 public:
  static std::unique_ptr<SessionHandle> open(std::shared_ptr<Rules> rules, ModelText text,
                                             std::optional<session::ModelFile> file, session::SessionOptions options) {
    if (!text.faults().empty()) raiseModelError(text);
    Session::Opened opened;
    {
      py::gil_scoped_release const release;
      opened = Session::open(*rules->data, std::move(text), std::move(options));
    }
    return made(std::move(rules), std::move(opened), std::move(file));
  }

  static std::unique_ptr<SessionHandle> open(std::shared_ptr<Rules> rules, ModelState const& state,
                                             session::SessionOptions options) {
    Session::Opened opened;
    {
      py::gil_scoped_release const release;
      opened = Session::open(*rules->data, state, std::move(options));
    }
    return made(std::move(rules), std::move(opened), session::ModelFile::named({}));
  }

  ~SessionHandle() = default;
  SessionHandle(SessionHandle const&) = delete;
  SessionHandle& operator=(SessionHandle const&) = delete;

  /// The result of `question(session)`, which must not refer to the session.
  template <typename Question>
  auto ask(Question const& question) {
    // The lock is not recursive. Without this check, the handler of a signal would wait for its own thread for ever.
    if (thread_ == std::this_thread::get_id()) {
      throw std::runtime_error("the handler of a signal cannot use a session that was interrupted by the signal");
    }
    py::gil_scoped_release const release;
    std::lock_guard const lock(mutex_);
    Occupied const occupied(thread_);
    return question(*session_);
  }

  /// The same, as a record.
  template <typename Question>
  py::object record(Question const& question) {
    auto const answer = ask(question);
    return Converter()(answer);
  }

  [[nodiscard]] py::object eval(std::string const& expression, std::optional<std::string> const& at) {
    Evaluated const evaluated = ask([&](Session& session) {
      Evaluated made;
      made.parsed = rules::parseQuery(expression, session.rules());
      if (!made.parsed.query) throw rules::RuleError(made.parsed.diagnostics);
      DynamicTDF tree(false);
      ModelState const model = session.result();
      tree.initialise(model.begin(), model.end());
      std::string const start = at ? absolutePath(session, *at) : session.root();
      if (at && !start.empty() && !tree.hasObject(start)) throw py::value_error("the model has no object " + start);
      TDFContext const context(start);
      EvalContext evalContext(&tree);
      made.result = made.parsed.query->evaluate(context, &evalContext);
      made.explanation = made.parsed.query->explainAllParts(context, tree);
      return made;
    });
    Converter convert;
    return py::make_tuple(convert(evaluated.result), convert(evaluated.explanation));
  }

  /// Saves under `name`, or in the file that was opened. Returns the name.
  [[nodiscard]] Text save(std::optional<Text> const& name, bool overwrite) {
    auto const order = session::orderOfRules(*rules_->data);
    std::string saved;
    auto const error = ask([&](Session& session) {
      auto const mode = overwrite ? session::Overwrite::Yes : session::Overwrite::No;
      ModelState const result = session.result();
      auto failed = name ? file_.saveAs(name->bytes, result, order, mode) : file_.save(result, order, mode);
      saved = file_.name();
      return failed;
    });
    if (error) raiseSaveError(*error);
    return {saved};
  }

  [[nodiscard]] bool hasFile() {
    return ask([&](Session& /*session*/) { return !file_.name().empty(); });
  }

  /// The text that saving would write.
  [[nodiscard]] Bytes text() {
    auto const order = session::orderOfRules(*rules_->data);
    return ask([&](Session& session) { return Bytes{rewriteModelText(file_.bytes(), session.result(), order)}; });
  }

 private:
  SessionHandle(std::shared_ptr<Rules> rules, std::unique_ptr<Session> session, session::ModelFile file)
      : rules_(std::move(rules)), session_(std::move(session)), file_(std::move(file)) {}

  static std::unique_ptr<SessionHandle> made(std::shared_ptr<Rules> rules, Session::Opened opened,
                                             std::optional<session::ModelFile> file) {
    if (opened.error) raiseOpenError(*opened.error);
    return std::unique_ptr<SessionHandle>(
        new SessionHandle(std::move(rules), std::move(opened.session), std::move(*file)));
  }

  std::shared_ptr<Rules> rules_;
  std::mutex mutex_;
  /// The thread that is in a call.
  std::atomic<std::thread::id> thread_;
  std::unique_ptr<Session> session_;
  session::ModelFile file_;
};

session::SessionOptions optionsWith(std::optional<Text> const& root) {
  session::SessionOptions options;
  if (root) options.root = root->bytes;
  return options;
}

std::unique_ptr<SessionHandle> openText(std::shared_ptr<Rules> rules, Text const& source, Bytes const& content,
                                        std::optional<Text> const& root, bool isFile) {
  std::optional<ModelText> text;
  {
    py::gil_scoped_release const release;
    text.emplace(source.bytes, content.content);
  }
  return SessionHandle::open(std::move(rules), std::move(*text),
                             session::ModelFile::remembered(isFile ? source.bytes : std::string(), content.content),
                             optionsWith(root));
}

std::unique_ptr<SessionHandle> openState(std::shared_ptr<Rules> rules, py::dict const& model,
                                         std::optional<Text> const& root) {
  return SessionHandle::open(std::move(rules), stateFrom(model), optionsWith(root));
}

/// An item that a user has written: the item or None, and why there is none or None.
py::object knownItem(SessionHandle& handle, Text const& text) {
  session::KnownItem const known =
      handle.ask([&](Session& session) { return session::knownItem(session, text.bytes); });
  Converter convert;
  return py::make_tuple(convert(known.item), convert(known.refused));
}

/// Why there is no such item.
py::object refusal(SessionHandle& handle, Text const& path, std::optional<Text> const& name) {
  session::Item item{path.bytes, std::nullopt};
  if (name) item.name = name->bytes;
  return handle.record([&](Session& session) {
    auto const resolved = session.resolve(item.path.empty() && !item.name ? "/" : item.text());
    if (auto const* refused = std::get_if<session::Refused>(&resolved)) return *refused;
    // The path means something else: the item of a parameter has the path of an object, or the other way round.
    session::Refused refused;
    refused.code = item.isParam() ? session::RefusalCode::UnknownParameter : session::RefusalCode::UnknownObject;
    refused.sentence =
        "There is no " + std::string(item.isParam() ? "parameter" : "object") + " \"" + item.text() + "\".";
    refused.edit = item.isParam() ? Edit::activateParam(item.path, *item.name) : Edit::activateObject(item.path);
    return refused;
  });
}

py::object edit(SessionHandle& handle, py::object const& edits, bool followReferences) {
  std::vector<Edit> const list = editsFrom(edits);
  return handle.record([&](Session& session) { return session.edit(list, references(followReferences)); });
}

py::object tryEdits(SessionHandle& handle, py::object const& edits, bool followReferences, bool withFindings) {
  std::vector<Edit> const list = editsFrom(edits);
  return handle.record([&](Session& session) {
    if (withFindings) return session.tryWithFindings(list, references(followReferences));
    return session::TryResult{session.tryEdits(list, references(followReferences)), {}, {}};
  });
}

py::object look(SessionHandle& handle, Text const& path, std::optional<Text> const& name) {
  if (!name) return handle.record([&](Session& session) { return session.lookObject(path.bytes); });
  return handle.record([&](Session& session) { return session.lookParam(path.bytes, name->bytes); });
}

py::object lookParams(SessionHandle& handle, Text const& path) {
  return handle.record([&](Session& session) {
    std::vector<session::ParamRecord> records;
    for (std::string const& name : session.params(path.bytes)) {
      if (auto record = session.lookParam(path.bytes, name)) records.push_back(std::move(*record));
    }
    return records;
  });
}

py::object why(SessionHandle& handle, Text const& path, std::optional<Text> const& name,
               std::optional<Text> const& value, std::optional<std::string> const& question, std::size_t depth) {
  using session::Question;
  session::Item item{path.bytes, std::nullopt};
  if (name) item.name = name->bytes;
  session::WhyOptions options;
  options.depth = depth;
  if (value) options.value = value->bytes;
  if (question) options.question = questionFrom(*question);
  return handle.record([&](Session& session) {
    if (!question) {
      options.question = name ? Question::Value : Question::Presence;
      if (name && value) {
        auto const param = session.lookParam(item.path, *item.name);
        options.question = param && param->value == value->bytes ? Question::Value : Question::Allowed;
      }
    }
    return session.why(item, options);
  });
}

py::object how(SessionHandle& handle, Text const& path, std::optional<Text> const& name,
               std::optional<Text> const& value, std::size_t maxEdits, std::size_t maxCandidates, std::size_t maxTrials,
               std::size_t maxWays, double maxSeconds) {
  session::Goal goal{{path.bytes, std::nullopt}, std::nullopt};
  if (name) goal.item.name = name->bytes;
  if (value) goal.value = value->bytes;
  session::HowOptions options;
  options.maxEdits = maxEdits;
  options.maxCandidates = maxCandidates;
  options.maxTrials = maxTrials;
  options.maxWays = maxWays;
  constexpr double longest = 1e9;  // seconds, so that the number of milliseconds can be counted
  if (!(maxSeconds >= 0 && maxSeconds <= longest)) throw py::value_error("max_seconds must be from 0 to 1e9");
  options.maxTime = std::chrono::milliseconds(static_cast<std::int64_t>(maxSeconds * 1000));
  SignalCheck signals;
  options.isCancelled = [&signals] { return signals.isInterrupted(); };
  auto const result = handle.ask([&](Session& session) { return session.how(goal, options); });
  signals.raise();
  return Converter()(result);
}

}  // namespace

void defineSession(py::module_& module) {
  py::class_<SessionHandle>(module, "Session")
      .def("root",
           [](SessionHandle& handle) { return handle.ask([](Session& session) { return Text{session.root()}; }); })
      .def("known_item", &knownItem, py::arg("text"))
      .def(
          "absolute_path",
          [](SessionHandle& handle, Text const& text) {
            return handle.ask([&](Session& session) { return Text{absolutePath(session, text.bytes)}; });
          },
          py::arg("text"))
      .def(
          "means_param",
          [](SessionHandle& handle, Text const& path) {
            return handle.ask([&](Session& session) { return meansParam(session, path.bytes); });
          },
          py::arg("path"))
      .def("refusal", &refusal, py::arg("path"), py::arg("name"))
      .def("edit", &edit, py::arg("edits"), py::arg("follow_references"))
      .def("try_edits", &tryEdits, py::arg("edits"), py::arg("follow_references"), py::arg("with_findings"))
      .def("undo", [](SessionHandle& handle) { return handle.record([](Session& session) { return session.undo(); }); })
      .def("redo", [](SessionHandle& handle) { return handle.record([](Session& session) { return session.redo(); }); })
      .def("steps",
           [](SessionHandle& handle) { return handle.record([](Session& session) { return session.steps(); }); })
      .def("undone_steps",
           [](SessionHandle& handle) { return handle.ask([](Session& session) { return session.undoneSteps(); }); })
      .def("last_result",
           [](SessionHandle& handle) {
             return handle.record([](Session& session) {
               auto const* last = session.lastResult();
               return last != nullptr ? std::optional(*last) : std::nullopt;
             });
           })
      .def("look", &look, py::arg("path"), py::arg("name"))
      .def("look_params", &lookParams, py::arg("path"))
      .def(
          "params",
          [](SessionHandle& handle, Text const& path) {
            return handle.record([&](Session& session) { return session.params(path.bytes); });
          },
          py::arg("path"))
      .def(
          "child_types",
          [](SessionHandle& handle, Text const& path) {
            return handle.record([&](Session& session) { return session.childTypes(path.bytes); });
          },
          py::arg("path"))
      .def(
          "find",
          [](SessionHandle& handle, Text const& text, std::size_t most) {
            return handle.record([&](Session& session) { return session.find(text.bytes, most); });
          },
          py::arg("text"), py::arg("most"))
      .def("own", [](SessionHandle& handle) { return handle.record([](Session& session) { return session.own(); }); })
      .def("waiting",
           [](SessionHandle& handle) { return handle.record([](Session& session) { return session.waiting(); }); })
      .def("differences",
           [](SessionHandle& handle) { return handle.record([](Session& session) { return session.differences(); }); })
      .def("why", &why, py::arg("path"), py::arg("name"), py::arg("value"), py::arg("question"), py::arg("depth"))
      .def("how", &how, py::arg("path"), py::arg("name"), py::arg("value"), py::arg("max_edits"),
           py::arg("max_candidates"), py::arg("max_trials"), py::arg("max_ways"), py::arg("max_seconds"))
      .def("result",
           [](SessionHandle& handle) { return handle.record([](Session& session) { return session.result(); }); })
      .def("review",
           [](SessionHandle& handle) { return handle.record([](Session& session) { return session.review(); }); })
      .def(
          "eval",
          [](SessionHandle& handle, Text const& expression, std::optional<Text> const& at) {
            return handle.eval(expression.bytes, at ? std::optional(at->bytes) : std::nullopt);
          },
          py::arg("expression"), py::arg("at"))
      .def("text", &SessionHandle::text)
      .def("has_file", &SessionHandle::hasFile)
      .def("save", &SessionHandle::save, py::arg("path"), py::arg("overwrite"));
  module.def("open_text", &openText, py::arg("rules"), py::arg("source"), py::arg("content"), py::arg("root"),
             py::arg("is_file"));
  module.def("open_state", &openState, py::arg("rules"), py::arg("model"), py::arg("root"));
  module.def(
      "edit_sentence", [](py::object const& edit) { return Text{session::sentenceOf(editFrom(edit))}; },
      py::arg("edit"));
}

}  // namespace tarn::python
