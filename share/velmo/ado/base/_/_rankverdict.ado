*! version 1.0.0  22nov2026
* _rankverdict hypothesis z p_exact ties: the lines below a rank test
program define _rankverdict
	version 7.0
	args what z p ties
	display as text "H0: `what'"
	display as text "    z = " as result %8.3f `z' as text _column(22) "Prob > |z| = " as result %6.4f 2*norm(-abs(`z')) _continue
	if `p' < . {
		display as text _column(48) "exact: " as result %6.4f `p' _continue
	}
	display
	if "`ties'" != "0" {
		display as text "    corrected for ties"
	}
end
