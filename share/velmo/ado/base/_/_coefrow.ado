*! version 1.0.0  22nov2026
* _coefrow: rows of a table of estimates with their intervals, for programs
*   _coefrow head title level       _coefrow row name estimate error level [eform]       _coefrow foot
*   _coefrow show name estimate error level [eform]       the three for one row
* _level has the level right. Estimate and error are expressions without blanks. A row leaves r().
program define _coefrow, rclass
	version 7.0
	args what name b se level eform
	if "`what'" == "head" {
		Head "`2'" `3'
	}
	if "`what'" == "show" {
		Head `=cond("`eform'" == "", "Coef.", "exp(b)")' `level'
	}
	if "`what'" == "row" | "`what'" == "show" {
		Row "`name'" `b' `se' `level' `eform'
		return add
	}
	if "`what'" == "foot" | "`what'" == "show" {
		display as text "{hline 13}{c BT}{hline 64}"
	}
end

program define Head
	args title level
	local t = cond(e(df_r) < ., "t", "z")
	display as text "{hline 13}{c TT}{hline 64}"
	display as text _skip(13) "{c |}" %11s "`title'" "   Std. Err.      `t'    P>|`t'|     [`level'% Conf. Interval]"
	display as text "{hline 13}{c +}{hline 64}"
end

program define Row, rclass
	args name estimate error level eform
	tempname b se t p crit lb ub
	scalar `b' = `estimate'
	scalar `se' = `error'
	local df = e(df_r)
	scalar `t' = cond(`se' > 0, `b'/`se', .)
	scalar `p' = cond(`df' < ., tprob(`df', `t'), 2*norm(-abs(`t')))
	scalar `crit' = cond(`df' < ., invttail(`df', .5-`level'/200), invnorm(.5+`level'/200))
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
