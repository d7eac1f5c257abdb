// The host stand-in.
