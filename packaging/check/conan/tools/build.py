def check_min_cppstd(recipe, standard):
    assert int(recipe.settings.cppstd) >= standard


def can_run(_recipe):
    return True
