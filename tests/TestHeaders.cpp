// The target of TestHeaders.h needs a file to compile.
