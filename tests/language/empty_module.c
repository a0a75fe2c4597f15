// A module with nothing in it, for tests that need a module's file name.
extern int nvsupportTestModule;
int nvsupportTestModule = 0;
