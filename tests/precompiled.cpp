// Empty: the headers that tests share are compiled with it, see CMakeLists.txt.
