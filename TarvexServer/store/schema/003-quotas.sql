-- A deleted set takes its goals with it.
UPDATE goal SET deleted_at = (SELECT goal_set.deleted_at FROM goal_set
        WHERE goal_set.account_id = goal.account_id AND goal_set.set_id = goal.set_id)
    WHERE deleted_at IS NULL AND EXISTS (SELECT 1 FROM goal_set
        WHERE goal_set.account_id = goal.account_id AND goal_set.set_id = goal.set_id
            AND goal_set.deleted_at IS NOT NULL);

-- What an account holds at most, never less than it does: counted anew only when it would be too much.
ALTER TABLE account ADD COLUMN goals BIGINT NOT NULL DEFAULT 0;

ALTER TABLE account ADD COLUMN goal_bytes BIGINT NOT NULL DEFAULT 0;

ALTER TABLE account ADD COLUMN deleted_goals BIGINT NOT NULL DEFAULT 0;

UPDATE account SET goals = next_goal_id - 1, deleted_goals = next_goal_id - 1,
    goal_bytes = (SELECT COALESCE(SUM(LENGTH(name)), 0) FROM goal WHERE goal.account_id = account.account_id);
