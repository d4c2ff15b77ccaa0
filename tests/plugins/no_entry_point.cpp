/// A library that is no plug-in.
extern "C" int someOtherFunction() {
    return 1;
}
