*! version 1.0.0  22nov2026
* modelkeep: keeps the last fit under a name, for modeltable. Fits are held estimates; MODELKEPT lists their names.
program define modelkeep
	version 7.0
	args name
	if _local(2) != "" | _local(name) == "" | _local(name) == "_all" {
		error 198
	}
	confirm name `name'
	tempname b
	matrix `b' = get(_b)
	local kept $MODELKEPT
	nobreak {
		if index(" `kept' ", " `name' ") {
			capture estimates drop `name'
			error _rc == 1
			local kept : subinstr local kept "`name'" "", word
		}
		estimates hold `name', copy
		global MODELKEPT `kept' `name'
	}
end
