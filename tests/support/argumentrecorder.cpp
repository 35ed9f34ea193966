// Stands for a program whose arguments a test wants to see: writes them, its own name first, one a
// line, to the file that KPX_ARGUMENTS names.
#include <cstdlib>
#include <fstream>

int main(int argc, char **argv) {
  const char *path = std::getenv("KPX_ARGUMENTS");
  if (path == nullptr) return 2;
  std::ofstream file(path);
  for (int i = 0; i < argc; ++i) file << argv[i] << "\n";
  return file ? 0 : 1;
}
