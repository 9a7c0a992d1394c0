*! version 1.0.0  22nov2026
* maxlik: maximises the likelihood that a program computes. The equations and what belongs to a fit stand in global
* macros ML_..., which the support commands (mleval, mlsum...) read, and which go with the command.
program define maxlik, eclass byable(recall)
	version 7.0
	local text : local 0
	gettoken first text : text, parse(" ,(")
	if "`first'" == "" | "`first'" == "," {
		if _by() {
			error 190
		}
		syntax [, Level(integer -1)]
		if "`e(cmd)'" != "maxlik" {
			error 301
		}
		_level `level'
		Show `level'
		exit
	}
	if _by() {
		tempvar group
		quietly generate byte `group' = `_byindex' == _byindex()
	}
	macro drop ML_*
	global ML_by `group'
	local text : escaped 0
	capture noisily Fit `text'
	local rc = _rc
	if "$ML_posting" != "" {
		estimates clear
	}
	macro drop ML_*
	exit `rc'
end

program define Fit, eclass
	gettoken user 0 : 0, parse(" (")
	global ML_user `user'
	local n 0
	gettoken text rest : 0, match(bracket)
	while "`bracket'" == "(" {
		local n = `n'+1
		local text`n' : local text
		local 0 : local rest
		gettoken text rest : 0, match(bracket)
	}
	if `n' == 0 {
		display as error "an equation in parentheses required"
		exit 100
	}
	syntax [aweight fweight pweight iweight] [if] [in] [, Method(string) FROM(string) Robust CLuster(varname) *]
	Rules, `options'
	local method = cond("`method'" == "", "lf", "`method'")
	if !inlist("`method'", "lf", "d0", "d1", "d2") {
		display as error "method() must be lf, d0, d1 or d2"
		exit 198
	}
	if "`weight'" == "pweight" | "`cluster'" != "" {
		local robust robust
	}
	if "`robust'" != "" & ("`method'" != "lf" | "`weight'" == "iweight") {
		display as error "robust variances need method(lf), and no iweights"
		exit 198
	}
	marksample touse
	global ML_method `method'
	global ML_n `n'
	forvalues e = 1/`n' {
		local text : escaped text`e'
		Equation `e' `text'
		markout `touse' `used'
	}
	if "`cluster'" != "" {
		markout `touse' `cluster', strok
	}
	if "$ML_by" != "" {
		quietly replace `touse' = 0 if !$ML_by
	}
	quietly count if `touse'
	local N = r(N)
	if `N' < 2 {
		error cond(`N', 2001, 2000)
	}
	global ML_samp `touse'
	tempvar w
	if "`weight'" != "" {
		quietly generate double `w' `exp' if `touse'
		summarize `w', meanonly
		if inlist("`weight'", "aweight", "pweight") {
			quietly replace `w' = `w'/r(mean)
		}
		else {
			local N = int(r(sum))
		}
		global ML_w `w'
		global ML_wtyp `weight'
	}
	tempname b V ll
	Coefficients `b' "`from'" `touse'
	local t
	forvalues e = 1/`n' {
		tempvar theta`e' score`e'
		global ML_theta $ML_theta `theta`e''
		global ML_scores $ML_scores `score`e''
	}
	tempvar lnf
	quietly generate double `lnf' = .
	global ML_lnf `lnf'
	Maximise `b' `V' `ll' `iterate' `tolerance' `ltolerance' "`from'" "`trace'" "`log'"
	if "`robust'" != "" {
		local type = cond("`weight'" == "fweight", "[fweight=`w']", cond("`weight'" == "", "", "[pweight=`w']"))
		local groups = cond("`cluster'" == "", "", "cluster(`cluster')")
		_robust $ML_scores `type' if `touse', variance(`V') `groups'
		local clusters = r(N_clust)
	}
	local k = colsof(`b')
	local outcome $ML_y1
	* a Break among these brings back the estimates that there were
	tempname old
	capture estimates hold `old', restore
	local held = _rc == 0
	error _rc == 1
	if !`held' {
		global ML_posting 1
	}
	estimates post `b' `V', esample(`touse') obs(`N') depname(`outcome')
	estimates scalar ll = `ll'
	estimates scalar k = `k'
	estimates scalar ic = `ic'
	estimates scalar rc = `code'
	if "`robust'" != "" {
		estimates local vcetype Robust
	}
	if "`cluster'" != "" {
		estimates local clustvar `cluster'
		estimates scalar N_clust = `clusters'
	}
	if "`weight'" != "" {
		estimates local wtype `weight'
		local exp : escaped exp
		estimates local wexp `exp'
	}
	estimates local depvar $ML_y1
	estimates local user $ML_user
	estimates local cmd maxlik
	global ML_posting
	if `held' {
		estimates drop `old'
	}
	Show `level'
end

* How to iterate, and the level.
program define Rules
	syntax [, Level(integer -1) ITERate(integer 16000) TOLerance(real 1e-6) LTOLerance(real 0) TRace noLOg]
	_level `level'
	foreach rule in level iterate tolerance ltolerance trace log {
		c_local `rule' ``rule''
	}
end

* An equation: [name:] [y ... =] [varlist] [, noconstant offset() exposure()]. Leaves the variables used.
program define Equation
	gettoken e 0 : 0
	local name eq`e'
	gettoken head rest : 0, parse(":")
	gettoken mark rest : rest, parse(":")
	if "`mark'" == ":" {
		local name = trim("`head'")
		local 0 : local rest
	}
	else if substr(ltrim(_local(0)), 1, 1) == ":" {
		error 198
	}
	confirm name `name'
	gettoken head rest : 0, parse("=")
	gettoken mark rest : rest, parse("=")
	if "`mark'" == "=" {
		local 0 : local head
		syntax varlist(numeric ts)
		local outcomes `varlist'
		local 0 : local rest
	}
	syntax [varlist(default=none numeric ts)] [, noCONStant OFFset(varname numeric) EXPosure(varname numeric)]
	if "`varlist'" == "" & "`constant'" != "" {
		error 102
	}
	if "`offset'" != "" & "`exposure'" != "" {
		display as error "only one of offset() and exposure() allowed"
		exit 198
	}
	local at 0
	while "${ML_y`at'}" != "" | `at' == 0 {
		local at = `at'+1
	}
	foreach y of local outcomes {
		global ML_y`at' `y'
		local at = `at'+1
	}
	global ML_eq`e' `name'
	global ML_x`e' `varlist'
	global ML_xc`e' = cond("`constant'" == "", "1", "")
	global ML_xo`e' `offset'
	global ML_xe`e' `exposure'
	c_local used `outcomes' `varlist' `offset' `exposure'
end

* The places and names of the coefficients, without variables that are collinear; b is where to begin.
program define Coefficients
	args b from touse
	local k 0
	forvalues e = 1/$ML_n {
		if "${ML_x`e'}" != "" {
			local constant = cond("${ML_xc`e'}" == "", "noconstant", "")
			_rmcoll ${ML_x`e'} if `touse', `constant'
			global ML_x`e' `r(varlist)'
		}
		global ML_fp`e' = `k'+1
		foreach x in ${ML_x`e'} {
			local names `names' ${ML_eq`e'}:`x'
			local k = `k'+1
		}
		if "${ML_xc`e'}" != "" {
			local names `names' ${ML_eq`e'}:_cons
			local k = `k'+1
		}
		global ML_lp`e' = `k'
	}
	if `k' == 0 {
		error 102
	}
	matrix `b' = J(1,`k',0)
	local given : word count `from'
	capture confirm number `: word 1 of `from''
	error _rc == 1
	if `given' == 1 & _rc {
		matrix `b' = `from'
		if rowsof(`b') != 1 | colsof(`b') != `k' {
			error 503
		}
	}
	else if `given' {
		if `given' != `k' {
			error 503
		}
		forvalues i = 1/`k' {
			matrix `b'[1,`i'] = `: word `i' of `from''
		}
	}
	matrix colnames `b' = `names'
	matrix rownames `b' = y1
end

* The log likelihood at b; under lf each observation's stays behind, with the indices.
program define Loglik
	args b ll
	scalar `ll' = .
	if "$ML_method" == "lf" {
		local e 0
		foreach theta in $ML_theta {
			local e = `e'+1
			capture drop `theta'
			error _rc == 1
			mleval `theta' = `b', eq(`e')
		}
		Call
		mlsum `ll' = $ML_lnf
		exit
	}
	tempname g H
	quietly $ML_user 0 `b' `ll' `g' `H'
end

program define Call
	quietly replace $ML_lnf = .
	quietly $ML_user $ML_lnf $ML_theta
end

* Where no point is known to begin with, constants are moved as long as that helps, in growing steps.
program define Search
	args b ll
	tempname try new
	Loglik `b' `ll'
	forvalues round = 1/2 {
		forvalues e = 1/$ML_n {
			local at = ${ML_lp`e'}
			local step = cond("${ML_xc`e'}" == "", 0, 1)
			local turns 0
			while `step' & `turns' < 60 {
				matrix `try' = `b'
				matrix `try'[1,`at'] = `b'[1,`at']+`step'
				Loglik `try' `new'
				local turns = `turns'+1
				if `new' < . & (`new' > `ll' | `ll' >= .) {
					scalar `ll' = `new'
					matrix `b' = `try'
					local step = 2*`step'
				}
				else if abs(`step') > 1 {
					local step = sign(`step')
				}
				else {
					local step = cond(`step' == 1, -1, 0)
				}
			}
		}
	}
	if `ll' >= . {
		display as error "no point found at which the likelihood can be computed; from() may tell one"
		exit 430
	}
end

* Newton's steps from b; leaves V, ll, the number of iterations and how it ended: 0 converged, 430 not.
program define Maximise
	args b V ll iterate tolerance ltolerance from trace log
	if "`from'" == "" {
		Search `b' `ll'
	}
	else {
		Loglik `b' `ll'
		if `ll' >= . {
			display as error "the likelihood cannot be computed at from()"
			exit 430
		}
	}
	tempname g H d try new change
	local code 430
	local ic 0
	while 1 {
		if "`log'" == "" | "`trace'" != "" {
			display as text %-15s "Iteration `ic':" "log likelihood = " as result %10.0g `ll'
		}
		if "`trace'" != "" {
			matrix list `b', noheader format(%9.0g)
		}
		if `ic' >= `iterate' | `code' == 0 {
			continue, break
		}
		Derivatives `b' `ll' `g' `H'
		Invert `H' `V'
		matrix `d' = `g'*`V'
		local size 0
		local k = colsof(`b')
		forvalues i = 1/`k' {
			local size = max(`size', abs(`d'[1,`i'])/(abs(`b'[1,`i'])+.001))
		}
		matrix `change' = `d'*`g''
		matrix `try' = `b'+`d'
		Loglik `try' `new'
		local halvings 0
		while (`new' >= . | `new' < `ll'-1e-12*abs(`ll')) & `halvings' < 40 {
			local halvings = `halvings'+1
			matrix `d' = .5*`d'
			matrix `try' = `b'+`d'
			Loglik `try' `new'
		}
		* a step that rounding alone makes look bad is one from the maximum
		if `halvings' == 40 | (`halvings' & `change'[1,1] < 1e-10*(1+abs(`ll')) & !`ridged') {
			local code = cond(`change'[1,1] < 1e-8*(1+abs(`ll')) & !`ridged', 0, 430)
			continue, break
		}
		local gain = `new'-`ll'
		matrix `b' = `try'
		scalar `ll' = `new'
		local ic = `ic'+1
		if !`ridged' & (`size' <= `tolerance' | (`ltolerance' > 0 & `gain' <= `ltolerance'*abs(`ll'))) {
			local code 0
		}
	}
	Derivatives `b' `ll' `g' `H'
	Invert `H' `V'
	local names : colfullnames `b'
	matrix rownames `V' = `names'
	matrix colnames `V' = `names'
	c_local ic `ic'
	c_local code = cond(`ridged', 430, `code')
end

* The inverse; with a ridge where H isn't positive definite.
program define Invert
	args H V
	local k = colsof(`H')
	matrix `H' = .5*(`H'+`H'')
	local ridge 0
	while 1 {
		tempname M
		matrix `M' = `H'
		forvalues i = 1/`k' {
			matrix `M'[`i',`i'] = `H'[`i',`i']+`ridge'*max(abs(`H'[`i',`i']), 1e-8)
		}
		matrix `V' = syminv(`M')
		local lost 0
		forvalues i = 1/`k' {
			local lost = `lost' | !(`V'[`i',`i'] > 0)
		}
		if !`lost' | `ridge' > 1e10 {
			continue, break
		}
		local ridge = max(.01, 4*`ridge')
	}
	c_local ridged = `ridge' > 0
end

* ---- Derivatives: g of the log likelihood, H minus its second ones.

program define Derivatives
	args b ll g H
	if "$ML_method" == "lf" {
		ByIndex `b' `ll' `g' `H'
		exit
	}
	tempname own
	foreach matrix in g H {
		capture matrix drop ``matrix''
		error _rc == 1
	}
	scalar `own' = .
	quietly $ML_user 2 `b' `own' `g' `H'
	capture local k = colsof(`g')
	local given = _rc == 0
	error _rc == 1
	if !`given' | "$ML_method" == "d0" {
		ByCoefficient `b' `ll' `g' `H'
		exit
	}
	capture local k = colsof(`H')
	local given = _rc == 0
	error _rc == 1
	if !`given' | "$ML_method" == "d1" {
		ByGradient `b' `ll' `g' `H'
	}
end

* lf: each observation's by the indices, from which the chain rule makes those by the coefficients. Differences of
* fourth order; steps of a share of the scale on which an observation's likelihood bends.
program define ByIndex
	args b ll g H
	tempvar f0
	Loglik `b' `ll'
	quietly generate double `f0' = $ML_lnf
	local e 0
	foreach theta in $ML_theta {
		local e = `e'+1
		tempvar d`e'
		Along `e' `theta' `: word `e' of $ML_scores' `d`e'' `f0'
	}
	forvalues i = 1/$ML_n {
		forvalues j = `i'/$ML_n {
			tempname h`i'_`j' h`j'_`i'
			if `i' == `j' {
				mlmatsum `ll' `h`i'_`j'' = -`d`i'', eq(`i')
			}
			else {
				tempvar second
				Across `i' `j' `second'
				mlmatsum `ll' `h`i'_`j'' = -`second', eq(`i',`j')
				matrix `h`j'_`i'' = `h`i'_`j'''
				drop `second'
			}
		}
	}
	tempname part
	forvalues i = 1/$ML_n {
		mlvecsum `ll' `part' = `: word `i' of $ML_scores', eq(`i')
		Join `g' , `part' `i'
		forvalues j = 1/$ML_n {
			Join `part' , `h`i'_`j'' `j'
		}
		Join `H' \ `part' `i'
	}
	if `ll' >= . {
		NoDerivatives
	}
end

* Puts a part beside or below what is there, or is the first itself.
program define Join
	args all how part number
	if `number' == 1 {
		matrix `all' = `part'
	}
	else {
		matrix `all' = `all' `how' `part'
	}
end

* Along an index: the score, and the second derivative into a new variable.
program define Along
	args e theta score second f0
	tempvar at
	tempname size bend
	quietly generate double `at' = `theta'
	capture drop `score'
	error _rc == 1
	quietly generate double `score' = .
	quietly generate double `second' = .
	local h ${ML_h`e'}
	if "`h'" == "" {
		* a rough step first, which tells the scale
		mlsum `size' = abs(`at'), noweight
		mlsum `bend' = 1, noweight
		local h = 1e-3*(`size'/`bend'+1e-2)
		Differences `theta' `at' `score' `second' `f0' `e' `h'
		local h ${ML_h`e'}
	}
	Differences `theta' `at' `score' `second' `f0' `e' `h'
end

* By steps of h, smaller ones where the likelihood cannot be computed; leaves the step, and the one for the next time.
program define Differences
	args theta at score second f0 e h
	tempname size bend count
	forvalues try = 1/10 {
		quietly replace `score' = 0
		quietly replace `second' = -30*`f0'
		foreach move in -2 -1 1 2 {
			quietly replace `theta' = `at'+`move'*`h'
			Call
			quietly replace `score' = `score'+cond(abs(`move') == 1, 8, -1)*sign(`move')*$ML_lnf
			quietly replace `second' = `second'+cond(abs(`move') == 1, 16, -1)*$ML_lnf
		}
		quietly replace `theta' = `at'
		quietly replace `score' = `score'/(12*`h')
		quietly replace `second' = `second'/(12*`h'^2)
		mlsum `size' = `score', noweight
		mlsum `bend' = abs(`second'), noweight
		if `size' < . & `bend' < . {
			mlsum `count' = 1, noweight
			global ML_s`e' `h'
			global ML_h`e' = cond(`bend' > 0, min(.006/sqrt(`bend'/`count'), 1e3*`h'), `h')
			exit
		}
		local h = `h'/10
	}
	NoDerivatives
end

* Across two indices: the mixed second derivative into a new variable.
program define Across
	args i j second
	tempvar ati atj
	local thetai : word `i' of $ML_theta
	local thetaj : word `j' of $ML_theta
	quietly generate double `ati' = `thetai'
	quietly generate double `atj' = `thetaj'
	quietly generate double `second' = 0
	foreach m in 1 2 {
		* with steps once and twice as long, so that errors of second order cancel
		foreach signs in "1 1" "1 -1" "-1 1" "-1 -1" {
			gettoken a b : signs
			quietly replace `thetai' = `ati'+`a'*`m'*${ML_s`i'}
			quietly replace `thetaj' = `atj'+`b'*`m'*${ML_s`j'}
			Call
			quietly replace `second' = `second'+`a'*`b'*cond(`m' == 1, 16, -1)*$ML_lnf
		}
	}
	quietly replace `second' = `second'/(48*${ML_s`i'}*${ML_s`j'})
	quietly replace `thetai' = `ati'
	quietly replace `thetaj' = `atj'
end

* d0: by differences of the log likelihood along each coefficient, and each two.
program define ByCoefficient
	args b ll g H
	local k = colsof(`b')
	matrix `g' = J(1,`k',0)
	matrix `H' = J(`k',`k',0)
	tempname f sum bend
	forvalues i = 1/`k' {
		StepOf `b' `ll' `i'
		local h`i' `h'
		scalar `sum' = 0
		scalar `bend' = -30*`ll'
		foreach move in -2 -1 1 2 {
			local by = `move'*`h'
			At `b' `f' `i' `by'
			scalar `sum' = `sum'+cond(abs(`move') == 1, 8, -1)*sign(`move')*`f'
			scalar `bend' = `bend'+cond(abs(`move') == 1, 16, -1)*`f'
		}
		matrix `g'[1,`i'] = `sum'/(12*`h')
		matrix `H'[`i',`i'] = -`bend'/(12*`h'^2)
		local before = `i'-1
		forvalues j = 1/`before' {
			scalar `sum' = 0
			foreach m in 1 2 {
				foreach signs in "1 1" "1 -1" "-1 1" "-1 -1" {
					gettoken a c : signs
					local byi = `a'*`m'*`h`i''
					local byj = `c'*`m'*`h`j''
					At `b' `f' `i' `byi' `j' `byj'
					scalar `sum' = `sum'+`a'*`c'*cond(`m' == 1, 16, -1)*`f'
				}
			}
			matrix `H'[`i',`j'] = -`sum'/(48*`h`i''*`h`j'')
			matrix `H'[`j',`i'] = `H'[`i',`j']
		}
	}
end

* d1: by differences of the program's gradient.
program define ByGradient
	args b ll g H
	local k = colsof(`b')
	matrix `H' = J(`k',`k',0)
	tempname f gm sum none to
	forvalues i = 1/`k' {
		StepOf `b' `ll' `i'
		matrix `sum' = J(1,`k',0)
		foreach move in -2 -1 1 2 {
			matrix `to' = `b'
			matrix `to'[1,`i'] = `b'[1,`i']+`move'*`h'
			scalar `f' = .
			quietly $ML_user 1 `to' `f' `gm' `none'
			if `f' >= . {
				NoDerivatives
			}
			local factor = cond(abs(`move') == 1, 8, -1)*sign(`move')
			matrix `sum' = `sum'+(`factor')*`gm'
		}
		forvalues j = 1/`k' {
			matrix `H'[`i',`j'] = -`sum'[1,`j']/(12*`h')
		}
	}
end

* A step along coefficient i over which the log likelihood bends by about a thousandth.
program define StepOf
	args b ll i
	tempname up down
	local h = 1e-3*(abs(`b'[1,`i'])+1e-2)
	forvalues try = 1/12 {
		local back = -`h'
		At `b' `up' `i' `h'
		At `b' `down' `i' `back'
		local bend = abs(`up'-2*`ll'+`down')
		if `bend' >= . {
			local h = `h'/10
		}
		else if `bend' < 1e-4 {
			local h = `h'*cond(`bend' < 1e-10, 30, min(30, sqrt(1e-3/`bend')))
		}
		else if `bend' > 1e-2 {
			local h = `h'*max(.03, sqrt(1e-3/`bend'))
		}
		else {
			continue, break
		}
	}
	c_local h `h'
end

* The log likelihood where coefficients are moved: At b scalar i by [j by].
program define At
	args b f i move j other
	tempname to
	matrix `to' = `b'
	matrix `to'[1,`i'] = `b'[1,`i']+`move'
	if "`j'" != "" {
		matrix `to'[1,`j'] = `b'[1,`j']+`other'
	}
	Loglik `to' `f'
end

program define NoDerivatives
	display as error "derivatives of the likelihood cannot be computed"
	exit 430
end

program define Show
	args level
	display as text _newline "Maximum likelihood estimates" _col(51) "Number of obs   = " as result %10.0f e(N)
	display as text cond(e(rc), "convergence not achieved", "") _continue
	display as text _col(51) "Log likelihood  = " as result %10.0g e(ll) _newline
	estimates display, level(`level')
end
