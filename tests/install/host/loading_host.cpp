// Loads the core while it runs: the file named on the command line or, without one, by its plain name.
#include <dlfcn.h>

#include "tell.h"

int main(int count, char** arguments) {
  void* const library = dlopen(count > 1 ? arguments[1] : CORE_FILE, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::cerr << dlerror() << '\n';
    return 1;
  }
  const auto create = reinterpret_cast<decltype(&CreateInstance)>(dlsym(library, "CreateInstance"));
  const int status = create == nullptr ? 1 : tell(create());
  return dlclose(library) == 0 ? status : 1;
}
