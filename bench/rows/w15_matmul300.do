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
* repeat 10
matrix B = A*A
* check
matrix C = A[1,1...]*A[1...,1]
assert reldif(B[1,1], C[1,1]) < 1e-12
