"""A headless desk on which the real program runs, is looked at and listened to."""
