*! version 1.0.0  22nov2026
* matto: the columns of a matrix as variables; everything is checked before anything is made
program define matto
	version 7.0
	syntax anything(name=A) [, Names(string) REPLACE]
	local k = colsof(`A')
	if "`names'" == "" {
		local names : colnames `A'
	}
	local count : word count `names'
	if `count' != `k' {
		display as error "`k' names are needed, names() has `count'"
		exit 198
	}
	tokenize `names'
	forvalues i = 1/`k' {
		forvalues j = 1/`=`i'-1' {
			if "``i''" == "``j''" {
				display as error "``i'' stands twice among the names"
				exit 198
			}
		}
		capture confirm new variable ``i''
		error _rc == 1
		if _rc & (_rc != 110 | "`replace'" == "") {
			confirm new variable ``i''
		}
	}
	local rows = rowsof(`A')
	if `rows' > _N {
		quietly set obs `rows'
	}
	tempvar column
	forvalues j = 1/`k' {
		quietly generate double `column' = `A'[_n,`j']
		if "`replace'" != "" {
			capture drop ``j''
			error _rc == 1
		}
		rename `column' ``j''
	}
end
