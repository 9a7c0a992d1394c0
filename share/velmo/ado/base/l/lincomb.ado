*! version 1.0.0  22nov2026
* lincomb: a linear combination of coefficients, with its interval
program define lincomb, rclass
	version 7.0
	local typed : escaped 0
	_expression `typed'
	local 0 : local options
	syntax [, Level(integer -1) EForm]
	_level `level'
	tempname R b V e
	local exp : escaped expression
	quietly test `exp' = 0, matrix(`R')
	matrix `b' = e(b)
	matrix `V' = e(V)
	local k = colsof(`b')
	scalar `e' = -`R'[1,`k'+1]
	matrix `R' = `R'[1,1..`k']
	matrix `b' = `R'*`b''
	matrix `V' = `R'*`V'*`R''
	display
	display as text " (1)  " as result _text(expression)
	display
	_coefrow show (1) `b'[1,1]+`e' sqrt(`V'[1,1]) `level' `eform'
	return add
end
