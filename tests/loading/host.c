/* A program that links nothing of ours: loads, uses and unloads the feature-detection library three times, through a
   plugin that links it. usage: host PLUGIN LIBRARY OBSERVER */

#include <dlfcn.h>
#include <stdio.h>

static void* load(const char* path)
{
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        fprintf(stderr, "%s\n", dlerror());
    return library;
}

static int isLoaded(const char* path)
{
    void* const library = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library != 0;
}

static int fail(const char* what, int round)
{
    fprintf(stderr, "round %d: %s\n", round, what);
    return 1;
}

int main(int argc, char** argv)
{
    if (argc != 4)
        return 2;
    void* const observer = load(argv[3]);
    if (!observer)
        return 1;
    unsigned (*const nbClasses)(void) = (unsigned (*)(void))dlsym(observer, "nbFeatureDetectionClasses");
    unsigned (*const nbKernels)(void) = (unsigned (*)(void))dlsym(observer, "nbFeatureDetectionKernels");
    int (*const outlive)(void) = (int (*)(void))dlsym(observer, "checkResultsThatOutliveTheLibrary");

    for (int round = 0; round < 3; ++round) {
        if (nbClasses() != 0 || nbKernels() != 0)
            return fail("classes or kernels are registered while the library is not loaded", round);
        void* const plugin = load(argv[1]);
        if (!plugin)
            return 1;
        if (nbClasses() == 0 || nbKernels() == 0)
            return fail("no classes or kernels are registered after loading", round);
        int (*const use)(void) = (int (*)(void))dlsym(plugin, "useLibrary");
        if (!use())
            return fail("the library gives wrong results", round);
        dlclose(plugin);
        if (isLoaded(argv[2]))
            return fail("the library is still loaded", round);
        if (!outlive())
            return fail("results did not outlive the library", round);
    }
    printf("loaded, used and unloaded three times\n");
    return 0;
}
