// Prints the tables of docs/view-factors.md.

#include "measure/AccuracyTable.h"

#include <iostream>

int main() {
  for (const double mergeDistance : {1e-3, 1e-7})
    std::cout << markdown(Lumivane::Test::measuredAccuracy(mergeDistance)) << '\n';
}
