*! version 1.0.0  21nov2026
* egen's mode(): the most frequent value of a group, of strings too; several give missing unless an option chooses
program define _gmode
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) MINmode MAXmode NUMmode(integer 0) Missing]
	tempvar x sample use value times most mode first low high
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
		_bygroup `value' = `by' `x' if `use', missing count(`times')
		_bystats `most' = max(`times') if `use', by(`by')
		* the modes of a group have numbers one after the other
		_bygroup `mode' = `value' if `times' == `most', first(`first')
		_bystats `low' = min(`mode') `high' = max(`mode') if `sample', by(`by')
		local choice `low'
		if "`maxmode'" != "" {
			local choice `high'
		}
		else if `nummode' > 0 {
			replace `low' = cond(`low' + `nummode' - 1 <= `high', `low' + `nummode' - 1, .)
		}
		else if "`minmode'" == "" {
			count if `low' < `high'
			if r(N) {
				noisily display as text "(some groups have several modes: minmode, maxmode or nummode() choose)"
			}
			replace `low' = . if `low' < `high'
		}
		generate `type' `varlist' = `x'[`first'[`choice']] if `choice' < .
	}
end
