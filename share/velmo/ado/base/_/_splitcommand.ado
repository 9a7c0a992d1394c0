*! version 1.0.0  22nov2026
* _splitcommand text: what stands behind a prefix, which is [, options] : command, or command, options. Leaves with the
* caller the command as command, escaped; ", options" as options; and whether there is a colon
program define _splitcommand
	version 7.0
	local typed : escaped 0
	_splitat : `typed'
	c_local colon `found'
	if `found' {
		local command : local behind
		c_local options : local before
	}
	else {
		_splitat , `typed'
		local command : local before
		c_local options `", `behind'"'
	}
	c_local command : escaped command
end
