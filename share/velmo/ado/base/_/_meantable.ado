*! version 1.0.0  22nov2026
* _meantable heading label level | row N mean se sd df level label | rule mark: the parts of a table of means
program define _meantable
	version 7.0
	if "`1'" == "heading" {
		args part label level
		display as text _newline "{hline 13}{c TT}{hline 64}"
		display as text %12s abbrev(_local(label),12) " {c |}    Obs       Mean  Std. Err.  Std. Dev.    " _continue
		display as text "[`level'% Conf. Interval]"
		_meantable rule +
	}
	else if "`1'" == "rule" {
		args part mark
		display as text "{hline 13}{c `mark'}{hline 64}"
	}
	else {
		args part n mean se sd df level label
		tempname half
		scalar `half' = invttail(`df', (1-`level'/100)/2)*`se'
		display as text %12s abbrev(_local(label),12) " {c |}" as result %7.0f `n' _skip(2) %9.0g `mean' _continue
		display as result _skip(2) %9.0g `se' _skip(2) %9.0g `sd' _skip(2) %9.0g (`mean'-`half') _continue
		display as result _skip(2) %9.0g (`mean'+`half')
	}
end
