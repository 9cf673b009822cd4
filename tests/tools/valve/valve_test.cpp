#include "valve.h"

// Nothing is said of a pressure of 50, of none between 10 and 20, of opening a valve not at all, and of wear.
int main() {
  bool const holds =
      opening(60) == 2 && opening(20) == 1 && opening(10) == 0 && turnsToClose(2) == 10 && turnsToOpen(2) == 10;
  return holds ? 0 : 1;
}
