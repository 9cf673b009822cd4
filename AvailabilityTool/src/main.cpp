// The program `zev`. Everything but `main` is in a library, so that tests can use its parts.
#include "CommandLine.h"
#include "cli/Output.h"

int main(int argc, char** argv) {
  tarn::tool::prepareStandardStreams();
  return tarn::tool::runCommandLine(argc, argv);
}
