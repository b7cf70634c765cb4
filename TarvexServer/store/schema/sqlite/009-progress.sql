-- What each set came to on the days that changed it: the percents of its areas, seven bits each, the first area's the
-- lowest. Without them, on the last of the days, it is what the set comes to now.
CREATE TABLE set_progress (
    account_id BIGINT NOT NULL,
    set_id BIGINT NOT NULL,
    day BIGINT NOT NULL,
    percents BIGINT,
    PRIMARY KEY (account_id, set_id, day),
    FOREIGN KEY (account_id, set_id) REFERENCES goal_set (account_id, set_id)
) WITHOUT ROWID;

-- What the areas' values were at the end of the days that changed them; the sets of an account have them in common.
CREATE TABLE area_progress (
    account_id BIGINT NOT NULL REFERENCES account (account_id),
    day BIGINT NOT NULL,
    value1 INTEGER NOT NULL, value2 INTEGER NOT NULL, value3 INTEGER NOT NULL, value4 INTEGER NOT NULL,
    value5 INTEGER NOT NULL, value6 INTEGER NOT NULL, value7 INTEGER NOT NULL, value8 INTEGER NOT NULL,
    PRIMARY KEY (account_id, day)
) WITHOUT ROWID;

-- Done goals are counted from the index alone.
DROP INDEX goal_of_place;

CREATE INDEX goal_of_place ON goal (account_id, set_id, area_id, goal_id, checked, deleted_at) WHERE deleted_at IS NULL;

-- The history of what is there already begins today.
INSERT INTO set_progress SELECT account_id, set_id, strftime('%s', 'now') / 86400, NULL
    FROM goal_set WHERE deleted_at IS NULL;

INSERT INTO area_progress SELECT account_id, strftime('%s', 'now') / 86400,
    COALESCE(MAX(CASE area_id WHEN 1 THEN value END), 0), COALESCE(MAX(CASE area_id WHEN 2 THEN value END), 0),
    COALESCE(MAX(CASE area_id WHEN 3 THEN value END), 0), COALESCE(MAX(CASE area_id WHEN 4 THEN value END), 0),
    COALESCE(MAX(CASE area_id WHEN 5 THEN value END), 0), COALESCE(MAX(CASE area_id WHEN 6 THEN value END), 0),
    COALESCE(MAX(CASE area_id WHEN 7 THEN value END), 0), COALESCE(MAX(CASE area_id WHEN 8 THEN value END), 0)
    FROM area GROUP BY account_id;
