#include "edit/CommandText.h"

#include <string_view>

#include <tarn/StringUtilities.h>

#include "edit/ShownText.h"

namespace tarn::tool {

std::string commandText(Edit const& edit) {
  std::string const path = edit.path.empty() ? "/" : edit.path;
  std::string const param = edit.path + '/' + edit.name;
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      return "set " + param + " = " + edit.value;
    case Edit::Kind::ActivateParam:
      return "on " + param;
    case Edit::Kind::DeactivateParam:
      return "off " + param;
    case Edit::Kind::ActivateObject:
      return "on " + path;
    case Edit::Kind::DeactivateObject:
      return "off " + path;
    case Edit::Kind::AddObject:
      return "add " + path;
    case Edit::Kind::RemoveObject:
      return "remove " + path;
    case Edit::Kind::DuplicateObject:
      return "copy " + path + " = " + edit.name;
    case Edit::Kind::RenameObject:
      return "rename " + path + " = " + edit.name;
  }
  return {};
}

bool isTypeable(Edit const& edit) {
  auto const arrives = [](std::string_view text) {
    return text == StringUtilities::trimmed(text) && harmless(text) == text;
  };
  bool const divides = edit.kind == Edit::Kind::SetParam || edit.kind == Edit::Kind::DuplicateObject ||
                       edit.kind == Edit::Kind::RenameObject;
  bool const isPathWhole =
      !divides || (edit.path.find('=') == std::string::npos &&
                   (edit.kind != Edit::Kind::SetParam || edit.name.find('=') == std::string::npos));
  return isPathWhole && arrives(edit.path) && arrives(edit.name) && arrives(edit.value);
}

}  // namespace tarn::tool
