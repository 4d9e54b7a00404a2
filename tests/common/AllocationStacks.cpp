// For test programs that start the toolkit, under the sanitizers: keeps the stack of every allocation, also through
// libraries without frame pointers, so that what such a library leaks is told from what this project leaks. Slow, and
// so not whole.
#ifdef __SANITIZE_ADDRESS__
extern "C" const char* __asan_default_options() { return "fast_unwind_on_malloc=0:malloc_context_size=8"; }
#endif
