// The source of targets that own nothing but a set of precompiled headers.
