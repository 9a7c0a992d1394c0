* load
set matsize 400
program define fill
	matrix A = J(200,200,0)
	forvalues i = 1/200 {
		forvalues j = 1/200 {
			matrix A[`i',`j'] = uniform()
		}
	}
end
fill
matrix S = A + A'
* repeat 5
matrix symeigen X v = S
* check
matrix C = X*diag(v)*X'
assert mreldif(C, S) < 1e-9
