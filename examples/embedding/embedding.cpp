// A user interface in small: one object is edited, and a table of its parameters is kept up to date from what each edit
// says that it changed. The table is never read anew as a whole.
//
//     embedding RULES MODEL ROOT < edits          an edit a line: PATH/NAME=VALUE

#include <iostream>
#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/TDFChange.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

#include "Table.h"

int main(int argc, char** argv) try {
  if (argc != 4) {
    std::cerr << "usage: embedding RULES MODEL ROOT < edits\n";
    return 2;
  }
  auto const rules = tarn::rules::loadRules({argv[1]});
  auto const model = tarn::TDFChangeFile({argv[2]}, {}, tarn::TDFChangeFile::Strict).toModelState();
  tarn::DynamicTDF base(false);
  base.initialise(model.begin(), model.end());

  tarn::ProvisionalTDF object(rules.get(), argv[3]);
  object.initialise(&base, {});
  Table table;
  table.refresh(object);
  table.print(std::cout);

  for (std::string line; std::getline(std::cin, line);) {
    tarn::TDFChange const edit(line);
    object.activeSetParam(edit.getFullPath(), edit.name, edit.value);
    table.refresh(object);
    std::cout << "\n" << line << "\n";
    table.print(std::cout);
  }
  return 0;
} catch (tarn::Error const& error) {
  std::cerr << "embedding: " << error.getMessage() << "\n";
  return 2;
}
