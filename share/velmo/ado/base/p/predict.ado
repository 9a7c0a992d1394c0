*! version 1.0.0  22nov2026
* predict: predictions after an estimation, by the program that its e(predict) names, or else by _predict
program define predict
	version 7.0
	local program `e(predict)'
	if "`program'" == "" {
		local program _predict
	}
	local typed : escaped 0
	`program' `typed'
end
