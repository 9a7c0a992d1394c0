*! version 1.0.0  22nov2026
* _coefrow: rows of a table of estimates with their intervals, for programs
*   _coefrow head title level       _coefrow row name estimate error level [eform]       _coefrow foot
*   _coefrow show name estimate error level [eform]       the three for one row
* level -1 is the setting. Estimate and error are expressions without blanks. A row leaves r().
program define _coefrow, rclass
	version 7.0
	gettoken what 0 : 0
	if "`what'" == "row" | "`what'" == "show" {
		if "`what'" == "show" {
			args name b se level eform
			Head `level' `=cond("`eform'" == "", "Coef.", "exp(b)")'
		}
		Row `0'
		return add
	}
	if "`what'" == "head" {
		gettoken title 0 : 0
		Head `0' `title'
	}
	if "`what'" == "foot" | "`what'" == "show" {
		display as text "{hline 13}{c BT}{hline 64}"
	}
end

program define Level
	args level
	if `level' == -1 {
		local level : set level
	}
	if `level' < 10 | `level' > 99 {
		display as error "level() must be between 10 and 99"
		exit 198
	}
	c_local level `level'
end

program define Head
	args level title
	Level `level'
	local t = cond(e(df_r) < ., "t", "z")
	display as text "{hline 13}{c TT}{hline 64}"
	display as text _skip(13) "{c |}" %11s "`title'" "   Std. Err.      `t'    P>|`t'|     [`level'% Conf. Interval]"
	display as text "{hline 13}{c +}{hline 64}"
end

program define Row, rclass
	args name estimate error level eform
	Level `level'
	tempname b se t p crit lb ub
	scalar `b' = `estimate'
	scalar `se' = `error'
	local df = e(df_r)
	scalar `t' = cond(`se' > 0, `b'/`se', .)
	scalar `p' = cond(`df' < ., tprob(`df', `t'), 2*norm(-abs(`t')))
	scalar `crit' = cond(`df' < ., invt(`df', `level'/100), invnorm(.5+`level'/200))
	scalar `lb' = `b'-`crit'*`se'
	scalar `ub' = `b'+`crit'*`se'
	return scalar estimate = `b'
	return scalar se = `se'
	return scalar lb = `lb'
	return scalar ub = `ub'
	return scalar df = `df'
	return scalar p = `p'
	if "`eform'" != "" {
		foreach x in b lb ub {
			scalar ``x'' = exp(``x'')
		}
		scalar `se' = `b'*`se'
	}
	display as text %12s abbrev("`name'",12) " {c |}" as result "  " %9.0g `b' "  " %9.0g `se' " " %8.2f `t' /*
		*/ "   " %5.3f `p' "    " %9.0g `lb' "   " %9.0g `ub'
end
