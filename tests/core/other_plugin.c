// A web plugin of another version than the module that asks it.
void* nvsupport_make_web_transfer(const char* version) {
  (void)version;
  return 0;
}
