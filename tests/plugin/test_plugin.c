/* A module for the dynamic-library tests to load: two exported functions and nothing
   else, written in C so that it needs no runtime beyond the system's own. */
#if defined(_WIN32)
#define PLUGIN_API __declspec(dllexport)
#else
#define PLUGIN_API __attribute__((visibility("default")))
#endif

PLUGIN_API int ovra_test_plugin_answer(void) { return 42; }

PLUGIN_API int ovra_test_plugin_add(int a, int b) { return a + b; }
