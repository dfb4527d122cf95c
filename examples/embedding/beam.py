# What the blocks tell each other. Blocks are read anew for each run, this module is not.
volume = 0.0
