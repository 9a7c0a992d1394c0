*! version 1.0.0  22nov2026
* logit_p: predict after logit
program define logit_p
	version 7.0
	local typed : escaped 0
	_binary_p logit `typed'
end
