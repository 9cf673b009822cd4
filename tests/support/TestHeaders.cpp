// Empty: TestHeaders needs a source, and CMakeLists.txt names the headers.
