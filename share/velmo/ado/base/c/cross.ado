*! version 1.0.0  21nov2026
* cross: every observation of memory with every one of a file
program define cross
	version 7.0
	syntax using/
	local n = _N
	if !`n' {
		error 2000
	}
	preserve
	quietly {
		tempvar id k merged
		tempfile mine other
		save `"`mine'"', internal
		use `"`using'"', internal
		local m = _N
		if !`m' {
			noisily error 2000
		}
		generate long `k' = _n
		sort `k'
		save `"`other'"', internal
		use `"`mine'"', internal
		* copies stand behind the data, those of one observation together
		expand `m'
		generate long `id' = cond(_n <= `n', _n, 1+int((_n-`n'-1)/(`m'-1)))
		generate long `k' = cond(_n <= `n', 1, 2+mod(_n-`n'-1, `m'-1))
		sort `k' `id'
		merge `k' using `"`other'"', _merge(`merged')
		sort `id' `k'
		drop `id' `k' `merged'
	}
	restore, not
end
