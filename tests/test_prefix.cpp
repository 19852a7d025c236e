// Carries the precompiled header of the tests; see CMakeLists.txt beside it.
