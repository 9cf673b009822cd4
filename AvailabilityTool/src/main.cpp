// The program `zev`. All of it but the way into it stands in a library, so that tests can have its parts one by one.
#include "cli/CommandLine.h"
#include "cli/Output.h"

int main(int argc, char** argv) {
  tarn::tool::prepareStandardStreams();
  return tarn::tool::runCommandLine(argc, argv);
}
