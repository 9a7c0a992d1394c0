*! version 1.0.0  22nov2026
* lincomb: a linear combination of coefficients, with its interval
program define lincomb, rclass
	version 7.0
	syntax anything(id="expression") [, Level(integer -1) EForm]
	tempname R b V e
	local exp : escaped anything
	quietly test `exp' = 0, matrix(`R')
	matrix `b' = e(b)
	matrix `V' = e(V)
	local k = colsof(`b')
	scalar `e' = -`R'[1,`k'+1]
	matrix `R' = `R'[1,1..`k']
	matrix `b' = `R'*`b''
	matrix `V' = `R'*`V'*`R''
	display
	display as text " (1)  " as result _text(anything)
	display
	_coefrow show (1) `b'[1,1]+`e' sqrt(`V'[1,1]) `level' `eform'
	return add
end
