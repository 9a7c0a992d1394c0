*! version 1.0.0  22nov2026
* _tiesum varname: leaves with the caller the sum of t^3-t over groups of t equal values, as ties
program define _tiesum
	version 7.0
	args x
	tempvar group count
	quietly {
		_bygroup `group' = `x', count(`count')
		replace `count' = `count'^2-1
		summarize `count'
	}
	c_local ties = cond(r(N), r(sum), 0)
end
