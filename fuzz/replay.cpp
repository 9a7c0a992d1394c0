// Replays saved inputs through a fuzz target without a fuzzer: every file named, and every file of a folder named.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
    if (std::filesystem::is_directory(path)) {
        for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(path)) replay(entry);
        return;
    }
    std::ifstream in(path, std::ios::binary);
    std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    replayed++;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; i++) replay(std::filesystem::absolute(argv[i]));      // a target may change folders
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
