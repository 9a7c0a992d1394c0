*! version 1.0.0  21nov2026
* joinby: all pairs of an observation of memory and one of a file within the groups that variables form
program define joinby
	version 7.0
	syntax [varlist(default=none)] using/ [, UNMatched(string) _MERGE(string) noLabel UPDATE REPLACE]
	local unmatched = lower("`unmatched'")
	if !index(" none both master using ", " `unmatched' ") & "`unmatched'" != "" {
		display as error "unmatched() must be none, both, master or using"
		exit 198
	}
	if "`replace'" != "" & "`update'" == "" {
		display as error "replace may be specified only with update"
		exit 198
	}
	if index(" none ", " `unmatched' ") | "`unmatched'" == "" {
		local unmatched none
		if "`_merge'" != "" {
			display as error "_merge() needs unmatched(both), unmatched(master) or unmatched(using)"
			exit 198
		}
	}
	else if "`_merge'" == "" {
		local _merge _merge
	}
	if "`_merge'" != "" {
		confirm new variable `_merge'
	}
	if _N == 0 {
		error 2000
	}
	preserve
	quietly {
		tempvar id k m merged last
		tempfile mine other counts
		foreach v of varlist _all {
			local had `had' `v'
		}
		generate long `id' = _n
		save `"`mine'"', internal
		use `"`using'"', internal `label'
		Keys "`had'" `varlist'
		if _N == 0 {
			noisily error 2000
		}
		generate long `id' = _n
		sort `keys' `id'
		drop `id'
		by `keys': generate long `k' = _n
		sort `keys' `k'
		save `"`other'"', internal
		by `keys': generate long `m' = _N
		by `keys': keep if _n == 1
		keep `keys' `m'
		save `"`counts'"', internal
		use `"`mine'"', internal
		sort `keys' `id'
		noisily Merge `keys' using `"`counts'"', nolabel nokeep _merge(`merged')
		if index("none using", "`unmatched'") {
			drop if `merged' == 1
		}
		expand `m'
		sort `keys' `id'
		generate long `k' = 1
		replace `k' = `k'[_n-1] + 1 if `id' == `id'[_n-1]
		sort `keys' `k' `id'
		if index("none master", "`unmatched'") {
			local nokeep nokeep
		}
		noisily Merge `keys' `k' using `"`other'"', `nokeep' `label' `update' `replace' _merge(`last')
		sort `keys' `id' `k'
		drop `id' `k' `m' `merged'
		if "`_merge'" != "" {
			rename `last' `_merge'
		}
		else {
			drop `last'
		}
		sort `keys'
	}
	restore, not
end

* Shows what is wrong, and nothing else.
program define Merge
	capture quietly merge `0'
	error _rc == 1
	if _rc {
		merge `0'
	}
end

* The variables that join: those named, which the file must have, or all that both have.
program define Keys
	args had
	macro shift
	if "`*'" != "" {
		foreach v of varlist _all {
			local theirs `theirs' `v'
		}
		foreach v in `*' {
			local same : subinstr local theirs "`v'" "`v'", word count(local known)
			if !`known' {
				display as error "variable `v' not found in using data"
				exit 111
			}
		}
		c_local keys `*'
		exit
	}
	foreach v of varlist _all {
		local same : subinstr local had "`v'" "`v'", word count(local known)
		if `known' {
			local keys `keys' `v'
		}
	}
	if "`keys'" == "" {
		display as error "no common variables"
		exit 111
	}
	c_local keys `keys'
end
