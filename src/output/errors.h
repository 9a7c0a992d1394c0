// Return codes and their messages. Who detects a failure prints it, once, and returns its code: in one step by
// `return error(198);`, or by one of the reporters below when the message holds a name. Codes are errors.def.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// State
extern UByte freshline;        // error starts its message at the left margin; off inside prefixed

// Prints the message of rc as an error (some as notes), and returns rc or what its row says.
Int4 error(Int4 rc);
// Of commands that cannot do without observations: the note of 2000, and 2000, which error() takes for no failure.
Int4 noobservations();
// The short texts that several codes share, by name; printed as errors.
enum shortmsg : Int4 {
    msg_notonxp, msg_requiresxp, msg_wouldbelost, msg_nodataset, msg_syntax, msg_exptoolong, msg_format,
    msg_notwithby, msg_mustbeempty, msg_lastestimates, msg_notwithtest, msg_lasttest, msg_toofew, msg_toomany,
    msg_varsspecified, msg_values, msg_logopen, msg_notsorted, msg_syslimit, msg_noroommore, msg_variables,
    msg_observations, msg_nofullscreen, msg_noobs, msg_unidentifiable, msg_notallowed, msg_required, msg_name,
    msg_novars, msg_alreadydefined, msg_ambiguous, msg_multipleby, msg_unrecognized, msg_filespec,
    msg_recordtoolong, msg_unexpectedeof, msg_nodictionary, msg_dictinvalid, msg_nolog,
    msg_repeatedcat, msg_repeatedterm, msg_extraneous, msg_unclassified, msg_inconsistent, msg_termlong,
    msg_toomanyvarsvalues, msg_termnotinmodel, msg_foundwhere, msg_xp, msg_obswas, msg_notweighted,
    msg_nonintegerfw, msg_number, msg_nothing,
};
void errmsg(shortmsg i);

Int4 notallowed(std::string_view word);        // "%s not allowed\n", 101
Int4 required(std::string_view word);          // "%s required\n", 100
Int4 invalidword(std::string_view text);       // "invalid %s\n", 198
Int4 notfound(std::string_view name);          // "%s not found\n" on a fresh line, 111
Int4 varnotfound(std::string_view name);       // "variable %s not found\n", 111
Int4 matnotfound(std::string_view name);
Int4 eqnotfound(std::string_view name);
Int4 regnotfound(std::string_view name);
Int4 macronotfound(std::string_view name);     // a name beginning with _ is a local's; 111
enum namekind : Int4 {
    name_invalid = 1, name_invalidvar, name_defined, name_ambiguous, name_notfound, name_notlabeled,
};
Int4 nameerror(Int4 kind, std::string_view name);     // 198, 198, 110, 111, 111, 182
// "%s invalid name\n", 198: the message of a name that is not valid.
Int4 badname(std::string_view name);
enum opkind : Int4 { op_toolong, op_invalid, op_d20 };
Int4 opmsg(std::string_view op, opkind kind);  // 1000, 198, 198
Int4 unmatchedquote();                         // 198
// A paragraph: text, a colon if asked, a blank, the message of rc. Without text the plain error.
Int4 prefixed(std::string_view text, Int4 rc, boolean colon);
// "file NAME not found\n" and the like; returns rc.
Int4 fileerror(Int4 rc, std::string_view filename);
// "%s must be between %s and %s\n" as an error; 0 when lo <= value <= hi, else 198.
Int4 boundscheck(std::string_view name, Int4 value, Int4 lo, Int4 hi);
// An error from a printf form (braces in it show), for detectors whose text is their own; returns rc.
Int4 errorf(Int4 rc, const char* form, ...) __attribute__((format(printf, 2, 3)));
// The same as a note.
Int4 notef(const char* form, ...) __attribute__((format(printf, 1, 2)));

// What the error command does with a code: prints, and returns the code given.
Int4 errorcommand(Int4 rc);

}  // namespace velmo
