// Linked against the core.
#include "tell.h"

int main() { return tell(CreateInstance()); }
