// The keyboard of a terminal, by keys: bytes in their order, escape sequences whole, pasted text marked as such. What
// is typed or pasted while nobody reads stays in the queue, also what a wait for a key has read too much.
//
// While the session edits its lines the terminal gives bytes as they come and doesn't echo them, also while commands
// run: nothing typed ahead is lost in a line buffer or mixed into the output, and ^C leaves no trace. Programs that the
// session starts get the terminal as it was.
#pragma once
#include <csignal>
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

enum keykind : Int4 {
    key_byte,          // of a character, or a control character; text of a paste
    key_sequence,      // an escape sequence; a lone Escape
    key_paste,         // a paste begins, or has ended
    key_signal,        // a signal came
    key_end,           // nothing more can come
};
struct keystroke {
    keykind kind;
    std::string bytes;
};

// State
extern volatile std::sig_atomic_t windowchanged;   // the window has another size; cleared by who looks at it
extern volatile std::sig_atomic_t resumed;         // the session was stopped, and goes on

boolean keys_possible();             // standard input is a terminal that knows escape sequences, and is ours
boolean keys_open();                 // takes the terminal; false when it can't be had
void keys_close();                   // gives it back as it was
boolean keys_taken();
void keys_lend(boolean toprogram);   // to a program that the session runs, and back
void keys_marks(boolean on);         // the terminal marks what is pasted
void keys_next(keystroke& key);      // waits
boolean keys_inpaste();              // the last key was part of a paste
boolean keys_lineahead();             // the rest of a line has come behind the last key: nobody types as fast
void keys_unread(std::string_view bytes);
// True when what has come is text for commands and not keys for a pause: a paste, a line that holds more than such
// keys, or, when it came `before` the pause, any other text.
boolean keys_commandsahead(boolean before);
// The next byte of the queue, -1 when it is empty.
Int4 keys_queued();
// Sends a question and returns what the terminal answers up to its description of itself, which ends every answer;
// empty when it keeps silent.
std::string keys_ask(std::string_view question);

// The length of the escape sequence that text begins with; 0 when its end is not there yet.
std::size_t sequencelength(std::string_view text);

}  // namespace velmo
