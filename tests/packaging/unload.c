/* A program that loads the library by hand, starts it and closes it again: its threads still run. */
#include <dlfcn.h>
#include <stdint.h>

int main(int count, char** arguments) {
    void* library = count > 1 ? dlopen(arguments[1], RTLD_NOW) : 0;
    if (!library) return 1;
    int (*init)(int32_t, void*);
    int (*uninit)(void);
    *(void**)&init = dlsym(library, "ZK_API_Init");
    *(void**)&uninit = dlsym(library, "ZK_API_UnInit");
    if (!init || !uninit || init(65, 0) != 0 || uninit() != 0 || dlclose(library) != 0) return 2;
    return dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) ? 0 : 3;
}
