"""The part of the COM package that generated scripts use, on top of the running process."""
