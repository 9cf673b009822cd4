// A session for scripts: does the edits that it reads, and prints what became of each, why it was refused, and what
// would have worked.
//
//     session RULES MODEL < edits          an edit a line: PATH/NAME=VALUE, `undo`, or `waiting`

#include <exception>
#include <iostream>
#include <string>
#include <variant>

#include <tarn/ModelText.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Sentences.h>
#include <tarn/session/Session.h>

namespace {

using namespace tarn::session;

void print(EditResult const& result) {
  std::cout << sentenceOf(result) << '\n';
  for (std::string const& sentence : sentencesOf(result.effect)) std::cout << "  " << sentence << '\n';
  for (Conversion const& conversion : result.conversions) std::cout << "  " << sentenceOf(conversion) << '\n';
}

void run(Session& session, std::string const& line) {
  std::cout << "> " << line << '\n';
  if (line == "undo") {
    if (auto const undone = session.undo()) print(*undone);
    return;
  }
  if (line == "waiting") {
    for (Waiting const& waiting : session.waiting()) std::cout << sentenceOf(waiting) << '\n';
    return;
  }
  auto const equals = line.find('=');
  auto const found = session.resolve(line.substr(0, equals));
  if (auto const* refused = std::get_if<Refused>(&found)) {
    std::cout << "Refused: " << sentenceOf(*refused) << '\n';
    return;
  }
  auto const& item = std::get<Item>(found);
  if (equals == std::string::npos || !item.isParam()) {
    if (auto const param = item.isParam() ? session.lookParam(item.path, *item.name) : std::nullopt) {
      std::cout << sentenceOf(*param) << '\n';
    } else if (auto const object = session.lookObject(item.path)) {
      std::cout << sentenceOf(*object) << '\n';
    }
    return;
  }
  print(session.edit(tarn::Edit::setParam(item.path, *item.name, line.substr(equals + 1))));
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::cerr << "usage: session RULES MODEL < edits\n";
    return 2;
  }
  auto const rules = tarn::rules::loadRules(argv[1]);
  auto const opened = Session::open(*rules, tarn::ModelText::read(argv[2]));
  if (!opened.session) {
    std::cerr << "session: " << opened.error->sentence << '\n';
    return 2;
  }
  for (std::string line; std::getline(std::cin, line);) run(*opened.session, line);
  return 0;
} catch (std::exception const& error) {
  std::cerr << "session: " << error.what() << '\n';
  return 2;
}
