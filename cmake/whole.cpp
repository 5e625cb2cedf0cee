// The code of a shared library stands in its layers; a target needs one source of its own.
