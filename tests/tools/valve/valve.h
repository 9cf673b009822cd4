#pragma once

// How far a valve is open, 0 to 2, at a pressure.
int opening(int pressure);

// How many turns it takes to close it, and to open it from there.
int turnsToClose(int opening);
int turnsToOpen(int opening);

// Whether the seat has to be replaced after so many turns.
bool isWorn(int turns);
