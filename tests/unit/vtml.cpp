// The markup engine, seen through the records it hands to a consumer.
#include "output/vtml.h"
#include "output/vtmlchars.h"
#include "output/vtmllines.h"
#include "output/vtmllogs.h"
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace velmo;
using std::string;
using std::string_view;

namespace {

struct seen {
    std::vector<string> lines, records;
    std::vector<Int4> codes;
    std::vector<Int4> keys;
};

Int4 consume(void* data, const UByte* record, Int4 code) {
    seen& s = *static_cast<seen*>(data);
    s.codes.push_back(code);
    if (!record) return 0;
    if (code != vcode_more) {
        s.records.emplace_back(reinterpret_cast<const char*>(record), std::size_t(record[0] | record[1] << 8));
        vlineview line = vline_view(record);
        string text(line.text);
        for (std::size_t i = 0; i < text.size(); i++)
            if (vline_style(line, Int4(i)) & style_graphic) text[i] = plaingraphic(UByte(text[i]));
        s.lines.push_back(text);
        return 0;
    }
    Int4 key = s.keys.empty() ? ' ' : s.keys.front();
    if (!s.keys.empty()) s.keys.erase(s.keys.begin());
    return key;
}

struct stream {
    vstream* s = vstream_new();
    seen got;
    stream() { vstream_setcallback(s, consume, &got); }
    ~stream() { vstream_delete(s); }
    void write(std::initializer_list<string_view> chunks) {
        for (string_view chunk : chunks) vstream_write(s, chunk);
    }
    // The lines since the last call, each ended by a newline; the unfinished one is ended too.
    string take() {
        vstream_flush(s);
        string all;
        for (const string& line : got.lines) all += line + "\n";
        got.lines.clear();
        return all;
    }
};

string shown(std::initializer_list<string_view> chunks) {
    stream s;
    s.write(chunks);
    return s.take();
}

string styles(const string& record) {
    vlineview line = vline_view(reinterpret_cast<const UByte*>(record.data()));
    string out;
    for (Int4 i = 0, start = 0; i <= line.styles[0]; start = line.styles[3 + 2 * i++])
        out += std::to_string(line.styles[2 + 2 * i]) + "x" + std::to_string(line.styles[3 + 2 * i] - start) + " ";
    return out;
}

// Each link as start-end:type:target.
string links(const string& record) {
    const UByte* p = reinterpret_cast<const UByte*>(record.data()) + 8;
    string out;
    for (Int4 n = *p++; n > 0; n--, p += 4 + p[3])
        out += std::to_string(p[0]) + "-" + std::to_string(p[1]) + ":" + std::to_string(p[2]) + ":" +
               reinterpret_cast<const char*>(p + 4) + " ";
    return out;
}

string filebytes(const char* name) {
    string all;
    std::FILE* f = std::fopen(name, "rb");
    for (int c; (c = std::fgetc(f)) != EOF;) all += char(c);
    std::fclose(f);
    return all;
}

}  // namespace

TEST(Vtml, RecordIsLaidOutByteByByte) {
    stream s;
    vstream_write(s.s, "a{help b:{c |}}\n");
    string link("\x01\x01\x02\x0c\x02" "b\0\0\0", 9), head({8 + 9 + 6 + 3, 0, 8 + 9, 0, 8 + 9 + 6, 0, 0, 3});
    string runs("\x01\x00\x02\x01\x86\x02", 6);      // 2 runs: text to column 1, link graphic to column 2
    EXPECT_EQ(s.got.records[0], head + link + runs + string("a|\0", 3));
}

TEST(Vtml, LongTextWrapsHardBehindAMark) {
    EXPECT_EQ(shown({string(79, 'x') + "\n"}), string(79, 'x') + "\n");
    EXPECT_EQ(shown({string(200, 'x') + "\n"}),
              string(79, 'x') + "\n> " + string(77, 'x') + "\n> " + string(44, 'x') + "\n");
    stream s;
    EXPECT_EQ(vstream_setlinesize(s.s, 10), 40);
    EXPECT_EQ(vstream_setlinesize(s.s, 1000), 255);
    vstream_write(s.s, string(300, 'y') + "\n");
    EXPECT_EQ(s.take(), string(255, 'y') + "\n> " + string(45, 'y') + "\n");
    vstream_write(s.s, string(60, 'z'));
    vstream_setlinesize(s.s, 40);
    vstream_write(s.s, "more\n");
    EXPECT_EQ(s.take(), string(60, 'z') + "\n> more\n");
}

TEST(Vtml, StyleRunsFollowDirectives) {
    stream s;
    vstream_write(s.s, "{hi:a {it:b {ul:c} d} e}f{bf}g{sf}{res}h{reset}i\n");
    EXPECT_EQ(styles(s.got.records[0]), "7x2 15x2 47x1 15x2 7x2 2x1 18x1 1x1 2x1 ");
    vstream_write(s.s, "{res}\n\n");
    for (std::size_t i : {1, 2}) EXPECT_EQ(styles(s.got.records[i]) + links(s.got.records[i]), "1x0 ") << "one run";
}

TEST(Vtml, DirectivesThatAreNotUnderstoodShow) {
    for (string_view text :
         {"{foo:bar}", "{hline 256}", "{hline x}", "{c 0x4}", "{c 300}", "{c nosuch}", "{res abc}", "{ul}", "{ul x}",
          "{p -1}", "{p 300}", "{p_end}", "{col 256}", "{dup 1000:x}", "{news}", "{update}", "{help}", "{help a: }",
          "{back x:y}", "{}", "{space}", "{lalign:x}", "{verylongname14:x}"})
        EXPECT_EQ(shown({string(text) + "\n"}), string(text) + "\n");
    EXPECT_EQ(shown({"{?foo:bar}[{?foo}]{?hline 3}\n"}), "bar[]---\n");
    EXPECT_EQ(shown({"{foo:a {hline 2} b}\n"}), "{foo:a -- b}\n") << "inner directives still work";
    EXPECT_EQ(shown({"{hi:{p}x}\n"}), "{p}x\n") << "modes change at the top level only";
}

TEST(Vtml, PlacesTextInColumns) {
    EXPECT_EQ(shown({"ab{col 5}c{col 3}d{col 10:-}e\n"}), "ab  cd---e\n");
    EXPECT_EQ(shown({"{center 7:{bf:ab}}|{lalign 4:x}|{ralign 4:x}|\n"}), "  ab   |x   |   x|\n");
    EXPECT_EQ(shown({"a{right:{hi:xyz}}\n"}), "a" + string(75, ' ') + "xyz\n");
    EXPECT_EQ(shown({string(70, 'a') + "{right:" + string(10, 'b') + "}\n"}),
              string(70, 'a') + "\n" + string(69, ' ') + string(10, 'b') + "\n");
    EXPECT_EQ(shown({"{center:abcd}\n"}), string(37, ' ') + "abcd\n");
    EXPECT_EQ(shown({"a\tb{tab}c\n"}), "a       b       c\n");
    EXPECT_EQ(shown({"{col 20:{.-}}|\n"}).size(), 80u + 2) << "a column that is never reached";
    EXPECT_EQ(shown({"x{.-}\n{.-}\ny\n"}), "x\n" + string(79, '-') + "\n" + string(79, '-') + "\ny\n");
    EXPECT_EQ(shown({"{title:abc}\n"}), "abc\n---\n");
}

TEST(Vtml, CharactersByNameAndCharset) {
    stream s;
    vstream_write(s.s, "{c 0x41}{c 66}{c A:}{c y:}{c 'g}{c -(}{c )-}{c $|}\n");
    maccharset = 1;
    vstream_write(s.s, "{c A:}{c C=}\n");
    maccharset = 0;
    EXPECT_EQ(s.take(), "AB\304\377`{}$\n\200E\n");
}

TEST(Vtml, HeldDirectivesJoinTheNextChunk) {
    EXPECT_EQ(shown({"a{hl", "ine", " 3}b\n"}), "a---b\n");
    EXPECT_EQ(shown({"a{hl", "\n"}), "a{hl\n");
    EXPECT_EQ(shown({"{hi:a {hline 3} b", "\n"}), "{hi:a --- b\n");
    EXPECT_EQ(shown({"{foo ", "{hline 2", "}} x\n"}), "{foo --} x\n");
    string many = "{" + string(1000, 'k');
    EXPECT_EQ(shown({many, string(100, 'k') + "}\n"}).substr(0, 5), "{kkkk") << "no room to hold more";
    EXPECT_EQ(shown({"{p}{foo", " {p_end}", "b}\nc\n"}), "{foo\nb}\nc\n");
}

TEST(Vtml, MarkerCountsOnlyAtTheEndOfAChunk) {
    EXPECT_EQ(shown({"{asis}\n{hi:x}\n", "{vtml}\n", "{hi:y}\n"}), "{hi:x}\ny\n");
    EXPECT_EQ(shown({"{asis}\n{hi:x}\n{vt", "ml", "}\n", "{hi:y}\n"}), "{hi:x}\ny\n");
    EXPECT_EQ(shown({"{asis}\n{vt", "x\n{vtml}\n{hi:y}\n"}), "{vtx\n{vtml}\n{hi:y}\n");
    EXPECT_EQ(shown({"{p}unfinished {hi:words", "{vtml}\n", "next\n"}), "unfinished {hi:words\n\nnext\n");
}

TEST(Vtml, ParagraphBlanksFollowTheTable) {
    EXPECT_EQ(shown({"{p}One.  Two. Three?  Four!  Five:  six  seven,  eight.{p_end}\n", "x\n"}),
              "One.  Two. Three?  Four!  Five:  six seven, eight.\nx\n");
    EXPECT_EQ(shown({"{p}one.\ttwo\tthree\nfour.\n five{p_end}\n"}), "one.  two three four.  five\n");
    EXPECT_EQ(shown({"{p}See {help foo:the page}.  Then ({help b}), pre{it:mid}post.{p_end}\n"}),
              "See the page.  Then (b), premidpost.\n");
    EXPECT_EQ(shown({"{p}{help a:End.}  Next{p_end}\n"}), "End. Next\n") << "one blank behind a link";
    EXPECT_EQ(shown({"{p}a{space 3}b{bind: c  d}{p_end}\n"}), "a   b c  d\n");
}

TEST(Vtml, ParagraphsFlowBetweenMargins) {
    string words;
    for (int i = 0; i < 30; i++) words += "word ";
    EXPECT_EQ(shown({"{p 4 8 11}" + words + "{p_end}\nafter\n"}),
              "    word word word word word word word word word word word word word\n"
              "        word word word word word word word word word word word word\n"
              "        word word word word word\nafter\n") << "the first line is full to column 68";
    EXPECT_EQ(shown({"{p 2 2}one\n", "two\n", "\n", "three\n"}), "  one two\n\nthree\n");
    EXPECT_EQ(shown({"{p 4 4}\n", "a\n", "{p 2 2}\n", "b{break}c\n", "{p_end}\n", "d\n"}), "    a\n\n  b\n  c\nd\n");
    stream s;
    vstream_write(s.s, "{p}a{break}" + words + words + "{p_end}\n");
    ASSERT_EQ(s.got.records.size(), 5u);
    EXPECT_EQ(s.got.records[0][6], 0);
    EXPECT_EQ(s.got.records[1][6], 0) << "the count begins anew behind a break";
    EXPECT_EQ(s.got.records[2][6], 1);
}

TEST(Vtml, LinksGoOnOverALineBreak) {
    stream s;
    vstream_setlinesize(s.s, 40);
    vstream_write(s.s, string(38, 'x') + "{view \"a:b\":12345} z\n");
    ASSERT_EQ(s.got.records.size(), 2u);
    EXPECT_EQ(links(s.got.records[0]), "38-40:18:a:b ");
    EXPECT_EQ(links(s.got.records[1]), "2-5:18:a:b ");
    vstream_write(s.s, "{p}Take (" + string(28, 'y') + " {help foo:the page}, or {search r(111):r(111);}.{p_end}\n");
    ASSERT_EQ(s.got.records.size(), 4u);
    EXPECT_EQ(links(s.got.records[2]), "35-38:12:foo ");
    EXPECT_EQ(links(s.got.records[3]), "0-4:12:foo 9-16:13:r(111) ") << "without the comma and the full stop";
    vstream_write(s.s, "{p}" + string(35, 'y') + " ({help abcd}){p_end}\n");
    EXPECT_EQ(links(s.got.records[5]), "1-5:12:abcd ") << "what leans on the link goes with it";
}

TEST(Vtml, LinksThatDoNotFitArePlain) {
    stream s;
    string target(250, 't');
    for (int i = 0; i < 4; i++) vstream_write(s.s, "{net " + target + ":a}");
    vstream_write(s.s, "\n{help a:{help b:c}}\n{net " + string(255, 't') + ":a}\n");
    EXPECT_EQ(styles(s.got.records[0]), "6x2 2x2 ") << "758 bytes hold two entries of 255";
    EXPECT_EQ(s.got.lines[1], "{help b:c}");
    EXPECT_EQ(s.got.lines[2].substr(0, 7), "{net tt");
}

TEST(Vtml, OldHelpText) {
    stream s;
    vstream_write(s.s, "{v6hlp}\nplain ^bold^ {hline 3}\n.  - \n.\na^^b @@ c ^y^^z^ last ^\n");
    EXPECT_EQ(s.take(), "plain bold {hline 3}\n" + string(79, '-') + "\n\na^b @ c y^z last ^\n");
    s.got.records.clear();
    vstream_write(s.s, "@regress@ @http://x/y@ @net:from x!a ^b^@ @view!v@ @nsdialog:!d@ ");
    vstream_write(s.s, "@net:!bad@ @back:x!bad@ @no:x!bad@\n");
    EXPECT_EQ(links(s.got.records[0]), "0-7:12:regress 8-18:9:http://x/y 19-22:14:from x 23-24:12:view 25-26:3: ");
    EXPECT_EQ(s.got.lines.back(), "regress http://x/y a b v d @net:!bad@ @back:x!bad@ @no:x!bad@");
    vstream_write(s.s, "{vtml}\n");
    vstream_write(s.s, "{hi:x}\n");
    EXPECT_EQ(s.got.lines.back(), "x");
}

TEST(Vtml, EscapedTextShowsAsItIs) {
    stream s;
    vstream_text(s.s, "{x} }{ {vtml}\n");
    Int4 state = 0;
    vstream_feed(state, s.s, "{hi:a}\rb\r");
    vstream_feed(state, s.s, "\nc\r\n\n");
    vstream_feedtext(state, s.s, "{d}\n");
    EXPECT_EQ(s.take(), "{x} }{ {vtml}\na\nb\nc\n\n{d}\n");
}

// Each of these would run for hours if its nesting were followed to the end.
TEST(Vtml, NestingHasAnEnd) {
    auto nested = [](string_view open, int n) {
        string text;
        for (int i = 0; i < n; i++) text += open;
        return text + "x" + string(std::size_t(n), '}') + "\n";
    };
    EXPECT_EQ(shown({nested("{right:", 3)}), string(78, ' ') + "x\n");
    EXPECT_NE(shown({nested("{right:", 60)}).find("{right:"), string::npos) << "the innermost ones show";
    EXPECT_NE(shown({nested("{dup 999:", 6)}).find('x'), string::npos);
    EXPECT_EQ(shown({nested("{hi:", 40000).substr(0, 160000) + "\n"}).substr(0, 8), "{hi:{hi:");
}

// Inputs without markers, blank lines in paragraphs, or braces that a newline leaves open.
TEST(Vtml, ChunksDoNotMatter) {
    const string text = "plain {hi:bold {it:x}} text\n{col 9}{c |}{right:{res:12.5}}\n{hline 5}{c TT}{...}\n" +
                        string(90, 'w') +
                        "\n{p 2 6}Words flow. See  {help regress:the page}, {it:two} words ({cmd:list}); and so on "
                        "until the line is full.  A tab\there{break}again{p_end}\nafter {search a b:c}\n{.-}\nend\n";
    string whole = shown({text});
    std::mt19937 random(7);
    for (int round = 0; round < 300; round++) {
        stream s;
        string_view rest = text;
        while (!rest.empty()) {
            std::size_t n = 1 + random() % (round % 2 ? 5 : 60);
            vstream_write(s.s, rest.substr(0, n));
            rest.remove_prefix(std::min(n, rest.size()));
        }
        ASSERT_EQ(s.take(), whole) << "round " << round;
    }
}

TEST(Vtml, RandomBytesDoNoHarm) {
    static const char* const pieces[] = {
        "{",  "}", "\n", " ", ":", "{p}", "{p_end}", "{asis}", "{v6hlp}", "{vtml}\n", "@", "^", "!", "{hi:", "{right:",
        "{dup 9:", "{help a:", "{col 9:", "word", "\t", "{title:", "{.-}", "\""};
    std::mt19937 random(11);
    for (int round = 0; round < 10000; round++) {
        stream s;
        vstream_setlinesize(s.s, Int4(random() % 300));
        for (unsigned n = random() % 40; n > 0; n--) {
            string chunk;
            for (unsigned m = random() % 6; m > 0; m--)
                chunk += random() % 4 ? string(pieces[random() % std::size(pieces)]) : string(1, char(random()));
            vstream_write(s.s, chunk);
        }
        s.take();
    }
}

TEST(Vtml, LogsGetBytesAndLines) {
    char raw[] = "/tmp/vtmlrawXXXXXX", lines[] = "/tmp/vtmllineXXXXXX";
    int rawfile = mkstemp(raw), linefile = mkstemp(lines);
    {
        stream s;
        vstream_write(s.s, "{res}{it}before");
        EXPECT_FALSE(vstream_lograw(s.s, rawfile, 1));
        EXPECT_FALSE(vstream_logline(s.s, linefile, 1));
        vstream_write(s.s, " {hi:x}{c TT}{c BRC}{c |}\n");
        vstream_text(s.s, "{y}\nz\n");
        vstream_write(s.s, string(600, 'k') + "\n");
        EXPECT_FALSE(vstream_lograw(s.s, rawfile, 2));
        EXPECT_FALSE(vstream_logline(s.s, linefile, 2));
        vstream_write(s.s, "not logged\n");
        EXPECT_TRUE(vstream_lograw(s.s, rawfile, 2)) << "it is not there";
        for (int i = 0; i < 5; i++) EXPECT_FALSE(vstream_logline(s.s, linefile, 1));
        EXPECT_TRUE(vstream_logline(s.s, linefile, 1)) << "the set is full";
    }
    string k = string(79, 'k'), more = "\r\n> " + string(77, 'k');
    EXPECT_EQ(filebytes(lines), "before x-+|\r\n{y}\r\nz\r\n" + k + more + more + more + more + more + more + "\r\n> " +
                                    string(600 - 79 - 6 * 77, 'k') + "\r\n");
    EXPECT_EQ(filebytes(raw), "{vtml}\r\n{res}{it}{ul off} {hi:x}{c TT}{c BRC}{c |}\r\n{c -(}y{c )-}\nz\r\n" +
                                  string(600, 'k') + "\r\n");
    std::remove(raw);
    std::remove(lines);
}

TEST(Vtml, PagesWaitAndPartialLinesGoOn) {
    stream s;
    vstream_setpage(s.s, 3);
    s.got.keys = {'l', ' ', 'q'};
    for (int i = 0; i < 8; i++) vstream_write(s.s, "x\n");
    std::vector<Int4> expect = {1, 1, 1, 5, 1, 5, 1, 1, 1, 5, 1};
    EXPECT_EQ(s.got.codes, expect) << "l shows one line more, a blank a page";
    s.got.codes.clear();
    vstream_clearpage(s.s);
    vstream_write(s.s, "ab");
    vstream_partial(s.s);
    vstream_write(s.s, "cd\n");
    EXPECT_EQ(s.got.lines[8] + "," + s.got.lines[9], "ab,abcd");
    EXPECT_EQ(s.got.codes, (std::vector<Int4>{2, 3, 1}));
}
