class ConanException(Exception):
    pass
