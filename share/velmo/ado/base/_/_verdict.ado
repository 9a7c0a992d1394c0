*! version 1.0.0  22nov2026
* _verdict what null name statistic less both greater [df]: the hypothesis and the p-values of the three others, which it
* leaves as r(p_l) r(p) r(p_u). Numbers are expressions without blanks.
program define _verdict, rclass
	version 7.0
	args what null name statistic less both greater df
	local shown : display %9.0g `null'
	local shown = trim("`shown'")
	display as text "H0: `what' = `shown'" _column(48) "`name' = " as result %9.4f `statistic' _continue
	if "`df'" != "" {
		display as text _column(63) "df = " as result %9.0g `df' _continue
	}
	display
	display as text "  Ha: `what' < `shown'" _column(30) "Ha: `what' != `shown'" _column(58) "Ha: `what' > `shown'"
	display as text "  p = " as result %6.4f `less' as text _column(30) "p = " as result %6.4f `both' /*
		*/ as text _column(58) "p = " as result %6.4f `greater'
	return scalar p_u = `greater'
	return scalar p_l = `less'
	return scalar p = `both'
end
