// The characters of {c x}. To add one: a row, in any order; the names are compared exactly.
#include "output/vtmlchars.h"
#include "base/text.h"

namespace velmo {

UByte maccharset = 0;

namespace {

struct charrow {
    std::string_view name;
    UByte latin1, mac;
    boolean graphic;
};

constexpr charrow chars[] = {
    {"A'g", 192, 203, false}, {"a'g", 224, 136, false},
    {"A'", 193, 231, false}, {"a'", 225, 135, false},
    {"A^", 194, 229, false}, {"a^", 226, 137, false},
    {"A~", 195, 204, false}, {"a~", 227, 139, false},
    {"A:", 196, 128, false}, {"a:", 228, 138, false},
    {"AE", 198, 174, false}, {"ae", 230, 190, false},
    {"C,", 199, 130, false}, {"c,", 231, 141, false},
    {"E'g", 200, 233, false}, {"e'g", 232, 143, false},
    {"E'", 201, 131, false}, {"e'", 233, 142, false},
    {"E^", 202, 230, false}, {"e^", 234, 144, false},
    {"E:", 203, 232, false}, {"e:", 235, 145, false},
    {"I'g", 204, 237, false}, {"i'g", 236, 147, false},
    {"I'", 205, 234, false}, {"i'", 237, 146, false},
    {"I^", 206, 235, false}, {"i^", 238, 148, false},
    {"I:", 207, 236, false}, {"i:", 239, 149, false},
    {"N~", 209, 132, false}, {"n~", 241, 150, false},
    {"O'g", 210, 241, false}, {"o'g", 242, 152, false},
    {"O'", 211, 238, false}, {"o'", 243, 151, false},
    {"O^", 212, 239, false}, {"o^", 244, 153, false},
    {"O~", 213, 205, false}, {"o~", 245, 155, false},
    {"O:", 214, 133, false}, {"o:", 246, 154, false},
    {"O/", 216, 175, false}, {"o/", 248, 191, false},
    {"U'g", 217, 244, false}, {"u'g", 249, 157, false},
    {"U'", 218, 242, false}, {"u'", 250, 156, false},
    {"U^", 219, 243, false}, {"u^", 251, 158, false},
    {"U:", 220, 134, false}, {"u:", 252, 159, false},
    {"Y'", 221, 89, false}, {"y'", 253, 121, false},
    {"ss", 223, 167, false}, {"y:", 255, 216, false},
    {"r?", 191, 192, false}, {"r!", 161, 193, false},
    {"Y=", 165, 180, false}, {"C=", 128, 69, false},
    {"L-", 163, 163, false},
    {"$|", 36, 36, false}, {"S|", 36, 36, false}, {"'g", 96, 96, false},
    {"-(", 123, 123, false}, {")-", 125, 125, false},
    {"TT", 1, 1, true}, {"BT", 2, 2, true}, {"LT", 3, 3, true}, {"RT", 4, 4, true},
    {"BRC", 5, 5, true}, {"BLC", 6, 6, true}, {"TRC", 7, 7, true}, {"TLC", 8, 8, true},
    {"-", 45, 45, true}, {"|", 124, 124, true}, {"+", 43, 43, true},
};

Int4 hexdigit(char c) {
    if (isdigit(c)) return c - '0';
    c = lowerchar(c);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// 0xHH, or a decimal number 0 to 255; -1 when it is neither.
Int4 codenumber(std::string_view name) {
    if (name.size() == 4 && name.substr(0, 2) == "0x") {
        Int4 high = hexdigit(name[2]), low = hexdigit(name[3]);
        return high < 0 || low < 0 ? -1 : high * 16 + low;
    }
    Int4 value = 0;
    for (char c : name) {
        if (!isdigit(c)) return -1;
        value = value * 10 + (c - '0');
        if (value > 255) return -1;
    }
    return name.empty() ? -1 : value;
}

}  // namespace

boolean vtml_char(std::string_view name, UByte& code, boolean& graphic) {
    Int4 number = codenumber(name);
    graphic = false;
    code = UByte(number);
    if (number >= 0) return true;
    for (const charrow& row : chars) {
        if (row.name != name) continue;
        code = maccharset ? row.mac : row.latin1;
        graphic = row.graphic;
        return true;
    }
    return false;
}

UByte latin1code(UByte code) {
    if (!maccharset || code < 128) return code;
    for (const charrow& row : chars)
        if (row.mac == code) return row.latin1;
    return code;
}

}  // namespace velmo
