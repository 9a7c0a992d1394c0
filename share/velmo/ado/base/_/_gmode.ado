*! version 1.0.0  21nov2026
* egen's mode(): the most frequent value of a group, of strings too; several give missing unless an option chooses
program define _gmode
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) MINmode MAXmode NUMmode(integer 0) Missing]
	tempvar x sample use times most first which modes
	_egby `x' `sample' = `exp' `if' `in', by(`by') strings
	if ("`minmode'" != "") + ("`maxmode'" != "") + (`nummode' > 0) > 1 {
		display as error "only one of minmode, maxmode and nummode() may be specified"
		exit 198
	}
	local type : type `x'
	if substr("`type'", 1, 3) != "str" {
		local type `typlist'
	}
	quietly {
		generate byte `use' = `sample'
		if "`missing'" == "" {
			markout `use' `x', strok
		}
		sort `s(key)' `use' `x'
		generate long `times' = .
		by `s(key)' `use' `x': replace `times' = cond(`use', _N, 0)
		generate long `most' = `times'
		`s(by)' replace `most' = max(`most'[_n-1], `times')
		`s(by)' replace `most' = `most'[_N]
		generate byte `first' = .
		by `s(key)' `use' `x': replace `first' = _n == 1 & `use' & `times' == `most'
		`s(by)' generate long `which' = sum(`first')
		`s(by)' generate long `modes' = `which'[_N]
		local choice = cond(`nummode' > 0, "`nummode'", cond("`minmode'" != "", "1", "`modes'"))
		if "`minmode'`maxmode'" == "" & `nummode' == 0 {
			count if `modes' > 1 & `sample'
			if r(N) {
				noisily display as text "(some groups have several modes: minmode, maxmode or nummode() choose)"
			}
			replace `first' = 0 if `modes' > 1
		}
		replace `first' = 0 if `which' != `choice'
		sort `s(key)' `first'
		`s(by)' generate `type' `varlist' = `x'[_N] if `sample' & `first'[_N]
	}
end
