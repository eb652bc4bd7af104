extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static const int table = 42;
    return &table;
}
