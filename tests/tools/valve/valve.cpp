#include "valve.h"

constexpr int turnsOfAThread = 5;
static_assert(turnsOfAThread == 5, "the thread is that of the pipe");

int opening(int pressure) {
  if (pressure > 50) return 2;
  return pressure > 10 ? 1 : 0;  // a comment with < 3 signs and "true"
}

int turnsToClose(int opening) {
  int turns = 0;
  while (opening > 0) {
    --opening;
    turns += turnsOfAThread;
  }
  return turns;
}

int turnsToOpen(int opening) {
  if (opening <= 0) return 0;
  return turnsToClose(opening);
}

bool isWorn(int turns) {
  return turns >= 100;
}
