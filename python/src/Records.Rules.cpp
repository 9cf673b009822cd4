// Problems of rule files, and results of expressions.
#include "Converter.h"
#include "RecordType.h"

namespace tarn::python {

namespace py = pybind11;

py::object Converter::operator()(rules::Diagnostic::Note const& note) {
  static RecordType const type("DiagnosticNote", {"source", "line", "column", "end_line", "end_column", "message",
                                                  "source_line", "source_column"});
  Converter& convert = *this;
  return type.make(convert(note.source), convert(note.line), convert(note.column), convert(note.endLine),
                   convert(note.endColumn), convert(note.message), convert(note.sourceLine),
                   convert(note.sourceColumn));
}

py::object Converter::operator()(rules::DiagnosticFix const& fix) {
  static RecordType const type("DiagnosticFix",
                               {"title", "source", "line", "column", "end_line", "end_column", "text"});
  Converter& convert = *this;
  return type.make(convert(fix.title), convert(fix.source), convert(fix.line), convert(fix.column),
                   convert(fix.endLine), convert(fix.endColumn), convert(fix.text));
}

py::object Converter::operator()(rules::Diagnostic const& diagnostic) {
  static RecordType const type(
      "Diagnostic", {"source", "line", "column", "end_line", "end_column", "severity", "code", "message", "source_line",
                     "source_column", "notes", "affected", "fix", "_text"});
  Converter& convert = *this;
  return type.make(convert(diagnostic.source), convert(diagnostic.line), convert(diagnostic.column),
                   convert(diagnostic.endLine), convert(diagnostic.endColumn),
                   convert(rules::severityName(diagnostic.severity)), convert(diagnostic.code),
                   convert(diagnostic.message), convert(diagnostic.sourceLine), convert(diagnostic.sourceColumn),
                   convert(diagnostic.notes), convert(diagnostic.affected), convert(diagnostic.fix),
                   convert(withoutLineEnd(format(diagnostic))));
}

py::object Converter::operator()(rules::Query::Result const& result) {
  using Kind = rules::Query::Kind;
  Converter& convert = *this;
  switch (result.kind) {
    case Kind::Truth:
      return convert(result.truth);
    case Kind::Number:
      return convert(result.number);
    case Kind::Text:
      return convert(result.text);
    case Kind::List:
    case Kind::Objects:
      break;
  }
  return convert(result.items);
}

}  // namespace tarn::python
