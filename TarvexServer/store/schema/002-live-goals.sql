-- What was deleted lies beside the goals that are there: it makes no read dearer, and is found by its age.
DROP INDEX goal_of_place;

DROP INDEX goal_deleted;

CREATE INDEX goal_of_place ON goal (account_id, set_id, area_id, goal_id) WHERE deleted_at IS NULL;

CREATE INDEX goal_deleted ON goal (account_id, deleted_at) WHERE deleted_at IS NOT NULL;

CREATE INDEX goal_set_deleted ON goal_set (account_id, deleted_at) WHERE deleted_at IS NOT NULL;

-- The time that the service ran; purging goes by it. One row.
CREATE TABLE purge_clock (seconds BIGINT NOT NULL);
