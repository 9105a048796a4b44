// zel-binary-plist IN OUT: writes the property list IN (XML) as a binary
// property list to OUT. The bundle ships the description in both forms: the
// XML stays the one that is edited, the binary one is what the editor reads
// (libplist parses it several times faster).
#include <plist/plist.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: zel-binary-plist IN.plist OUT.bplist\n");
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (!in.good() && !in.eof()) {
    std::fprintf(stderr, "zel-binary-plist: cannot read %s\n", argv[1]);
    return 1;
  }
  plist_t root = nullptr;
  plist_from_memory(text.data(), static_cast<uint32_t>(text.size()), &root);
  if (!root) {
    std::fprintf(stderr, "zel-binary-plist: %s is not a property list\n", argv[1]);
    return 1;
  }
  char* bytes = nullptr;
  uint32_t size = 0;
  plist_to_bin(root, &bytes, &size);
  plist_free(root);
  // Written beside, then renamed: a half-written file is never picked up.
  const std::string temporary = std::string(argv[2]) + ".tmp";
  std::FILE* out = std::fopen(temporary.c_str(), "wb");
  const bool written = out && bytes && std::fwrite(bytes, 1, size, out) == size;
  const bool closed = out && std::fclose(out) == 0;
  plist_to_bin_free(bytes);
  if (!written || !closed || std::rename(temporary.c_str(), argv[2]) != 0) {
    std::fprintf(stderr, "zel-binary-plist: cannot write %s\n", argv[2]);
    std::remove(temporary.c_str());
    return 1;
  }
  return 0;
}
