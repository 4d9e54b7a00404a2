// For test programs that open whole windows, under the sanitizers: keeps the whole stack of every allocation, also
// through libraries without frame pointers, so that what such a library leaks is told from what this project leaks.
// Slow.
#ifdef __SANITIZE_ADDRESS__
extern "C" const char* __asan_default_options() { return "fast_unwind_on_malloc=0"; }
#endif
