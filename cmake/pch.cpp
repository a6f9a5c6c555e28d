// The precompiled header needs one translation unit to be built with.
