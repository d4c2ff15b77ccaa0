#include "tests/support/SynthPlugin.h"

#include "tests/support/BuiltPlugin.h"

bool test::loadSynthPlugin() {
    static bool const isLoaded = loadBuiltPlugin("synth");
    return isLoaded;
}
