/* An application that loads the library, and with it the Chip SDK, while it runs. usage: loading LIBSAI */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>

int main(int argc, char** argv) {
  void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  int32_t (*create)(int, uint16_t) = NULL;
  if (library != NULL) *(void**)&create = dlsym(library, "sai_vlan_create");
  if (create == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 2;
  }
  printf("%d\n", (int)create(0, 10));
  return 0;
}
