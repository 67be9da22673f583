// A program that loads the effect module and uses the math functions that it exports: loaded MODULE
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "math/M_stuff.h"

namespace {

// The function `name` of the module, as the header declares it; ends the program when it is missing.
template <typename Function>
Function* lookUp(void* module, const char* name) {
  void* const symbol = dlsym(module, name);
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    std::exit(1);
  }
  return reinterpret_cast<Function*>(symbol);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: loaded MODULE\n");
    return 2;
  }
  void* const module = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  auto* const add = lookUp<decltype(M_AddRatio)>(module, "M_AddRatio");
  auto* const set_identity = lookUp<decltype(M_SetIdentityMatrix)>(module, "M_SetIdentityMatrix");
  auto* const scale = lookUp<decltype(M_ScaleMatrix)>(module, "M_ScaleMatrix");

  const M_Ratio third = {1, 3};
  const M_Ratio sixth = {1, 6};
  M_Ratio sum = {0, 1};
  if (add(&third, &sixth, &sum, nullptr) != 0) {
    return 1;
  }
  std::printf("1/3 + 1/6 = %d/%u\n", static_cast<int>(sum.num), static_cast<unsigned>(sum.den));

  // Constructed unset: M_Matrix3(true) would call the library, which this program does not link.
  M_Matrix3 m;
  set_identity(&m);
  scale(&m, 2.0, 2.0, 10.0, 10.0);
  std::printf("scaled about (10, 10), the origin moves to (%.1f, %.1f)\n", m.m[2][0], m.m[2][1]);
  dlclose(module);
  return 0;
}
