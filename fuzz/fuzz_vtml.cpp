// Any bytes, in chunks of any size, in any mode, must go through the markup engine without harm. The first byte
// chooses the mode, the second the line size, the third seeds the sizes of the chunks.
#include <cstdlib>
#include "output/vtml.h"
#include "output/vtmllines.h"

using namespace velmo;

// Reads every part of the record, so that the sanitizers see a wrong offset.
static Int4 consume(void* total, const UByte* record, Int4) {
    if (!record) return ' ';
    vlineview line = vline_view(record);
    for (std::size_t i = 0; i < line.text.size(); i++)
        *static_cast<Int4*>(total) += line.text[i] ^ vline_style(line, Int4(i));
    if (line.text.size() > 255) std::abort();
    return ' ';
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    Int4 total = 0;
    vstream* s = vstream_new();
    vstream_setcallback(s, consume, &total);
    vstream_setlinesize(s, data[1]);
    vstream_setpage(s, 5);
    vstream_setmode(s, vmode(1 + data[0] % 4));
    unsigned seed = data[2];
    std::string_view rest(reinterpret_cast<const char*>(data) + 3, size - 3);
    for (; !rest.empty(); seed = seed * 69069 + 1) {
        std::size_t n = seed == 0 ? rest.size() : 1 + (seed >> 16) % 61;
        seed % 7 == 3 ? vstream_text(s, rest.substr(0, n)) : vstream_write(s, rest.substr(0, n));
        rest.remove_prefix(n < rest.size() ? n : rest.size());
        if (seed % 11 == 5) vstream_partial(s);
    }
    vstream_delete(s);
    return 0;
}
