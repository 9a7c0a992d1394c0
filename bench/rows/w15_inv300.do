* load
set matsize 400
program define fill
	matrix A = J(300,300,0)
	forvalues i = 1/300 {
		forvalues j = 1/300 {
			matrix A[`i',`j'] = uniform()
		}
	}
end
fill
* repeat 5
matrix B = inv(A)
* check
matrix C = A*B
matrix I = I(300)
assert mreldif(C, I) < 1e-7
